// The metrology layer in one include: Gaussian fits with uncertainties,
// minimum-zone form evaluation and reference data, built as
// libquadrel_metrology.so on top of libquadrel.so.
#ifndef QUADREL_METROLOGY_METROLOGY_H
#define QUADREL_METROLOGY_METROLOGY_H

#include "quadrel/metrology/circumscribed_inscribed.h"
#include "quadrel/metrology/gaussian_circle_sphere.h"
#include "quadrel/metrology/gaussian_cylinder_cone.h"
#include "quadrel/metrology/gaussian_line_plane.h"
#include "quadrel/metrology/gaussian_torus.h"
#include "quadrel/metrology/minimum_zone.h"
#include "quadrel/metrology/reference_data.h"
#include "quadrel/metrology/status.h"

#endif  // QUADREL_METROLOGY_METROLOGY_H
