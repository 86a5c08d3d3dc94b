// quadrel: dense double-precision numerics for point sets in space.
//
// The umbrella header: it brings in the whole interface. Every header it names
// can also be included alone.
#ifndef QUADREL_QUADREL_H
#define QUADREL_QUADREL_H

#include "quadrel/matrix/matrix.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/stream.h"

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"

#include "quadrel/linalg/direct.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/linalg/polynomial.h"
#include "quadrel/linalg/svd.h"

#include "quadrel/geometry/distances.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/geometry/vectors.h"

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/fitting/ellipse.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/fitting/paraboloid.h"

#include "quadrel/estimators/quality_peak.h"
#include "quadrel/estimators/trihedral.h"

#endif  // QUADREL_QUADREL_H
