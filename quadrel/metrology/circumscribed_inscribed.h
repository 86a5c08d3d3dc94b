// Minimum circumscribed and maximum inscribed circles and spheres.
//
// The same search as the minimum-zone evaluations (see minimum_zone.h), with a
// one-sided objective: the smallest circle or sphere that holds every point,
// or the largest that holds none. Circles lie in the plane of the Gaussian
// circle and see the points projected on it. info.width is the spread
// max - min of the distances from the centre found; deviations are distances
// from the circle or sphere found (never positive for circumscribed, never
// negative for inscribed). An inscribed feature exists only where the points
// surround the centre; otherwise the search runs to its limit (kStepLimit).
#ifndef QUADREL_METROLOGY_CIRCUMSCRIBED_INSCRIBED_H
#define QUADREL_METROLOGY_CIRCUMSCRIBED_INSCRIBED_H

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/export.h"
#include "quadrel/metrology/status.h"

// The smallest circle that holds the points (3 x n, n >= 3, not collinear) seen
// in their Gaussian plane; centre and normal are 3 x 1.
QUADREL_METROLOGY_API MetrologyStatus MinimumCircumscribedCircle(const CMatrix &points,
                                                                 CMatrix &centre, CMatrix &normal,
                                                                 double &radius, ZoneInfo &info);

// The largest circle, in the Gaussian plane, that holds no point inside.
QUADREL_METROLOGY_API MetrologyStatus MaximumInscribedCircle(const CMatrix &points, CMatrix &centre,
                                                             CMatrix &normal, double &radius,
                                                             ZoneInfo &info);

// The smallest sphere that holds the points (3 x n, n >= 4, not coplanar).
QUADREL_METROLOGY_API MetrologyStatus MinimumCircumscribedSphere(const CMatrix &points,
                                                                 CMatrix &centre, double &radius,
                                                                 ZoneInfo &info);

// The largest sphere that holds no point inside.
QUADREL_METROLOGY_API MetrologyStatus MaximumInscribedSphere(const CMatrix &points, CMatrix &centre,
                                                             double &radius, ZoneInfo &info);

#endif  // QUADREL_METROLOGY_CIRCUMSCRIBED_INSCRIBED_H
