// Minimum-zone (Chebyshev) form: straightness, flatness, roundness and
// sphericity.
//
// Each evaluation finds the narrowest zone that holds every point, starting
// from the Gaussian feature and improving it by linear programmes on the
// linearised deviations (see ZoneInfo for what it reports). The search stops
// when the linearised problem can gain nothing more, which is the first-order
// optimality test of the Chebyshev problem; the points in the final
// programme's basis, with their sides, are the contacts that bound the zone.
// Where the zone is fixed by its contact points alone, as for designed data,
// the width is exact to rounding.
#ifndef QUADREL_METROLOGY_MINIMUM_ZONE_H
#define QUADREL_METROLOGY_MINIMUM_ZONE_H

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/export.h"
#include "quadrel/metrology/status.h"

// Straightness of a line in space: the thinnest cylinder that holds all points
// (3 x n, n >= 3, not all coincident). axisPoint and direction (3 x 1) give
// its axis, info.width its diameter; deviations are distances from the axis,
// every contact is on side +1.
QUADREL_METROLOGY_API MetrologyStatus MinimumZoneStraightness(const CMatrix &points,
                                                              CMatrix &axisPoint,
                                                              CMatrix &direction, ZoneInfo &info);

// Flatness: the thinnest slab between two parallel planes that holds all
// points (3 x n, n >= 4, not all on one line). point and normal (3 x 1) give
// the mid-plane; deviations are signed distances from it, +1 contacts lie on
// the plane the normal points to.
QUADREL_METROLOGY_API MetrologyStatus MinimumZoneFlatness(const CMatrix &points, CMatrix &point,
                                                          CMatrix &normal, ZoneInfo &info);

// Roundness: the narrowest annulus of two concentric circles, in the plane of
// the Gaussian circle, that holds the points (3 x n, n >= 3) seen in that
// plane. centre, normal (3 x 1) and radius give the mid circle; deviations are
// radial distances from it, +1 contacts on the outer circle.
QUADREL_METROLOGY_API MetrologyStatus MinimumZoneRoundness(const CMatrix &points, CMatrix &centre,
                                                           CMatrix &normal, double &radius,
                                                           ZoneInfo &info);

// Sphericity: the thinnest shell of two concentric spheres that holds all
// points (3 x n, n >= 4, not all in one plane). centre (3 x 1) and radius give the mid sphere;
// deviations are radial distances from it, +1 contacts on the outer sphere.
QUADREL_METROLOGY_API MetrologyStatus MinimumZoneSphericity(const CMatrix &points, CMatrix &centre,
                                                            double &radius, ZoneInfo &info);

#endif  // QUADREL_METROLOGY_MINIMUM_ZONE_H
