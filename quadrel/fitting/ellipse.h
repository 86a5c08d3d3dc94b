// Ellipse through a point set in space.
//
// EllipseFit finds the plane of the points with PlaneFit, turns the centred
// points so that the plane lies flat, and takes the algebraic circle through
// them as the start of a simplex search over the two foci and the focal sum.
// The search minimises the mean square mismatch of the focal sum over the
// points. The ellipse comes back as its two foci in space, the plane normal and
// the focal sum: its centre is the mean of the foci, the major axis runs through
// them, and with c half the focal distance and a half the focal sum the minor
// semi-axis is sqrt(a*a - c*c).
//
// The search ends at its limit of iterations when the costs are NaN, so the fit
// always returns; on a NaN or an infinity among the points it shares the
// handling of PlaneFit, from which it starts.
#ifndef QUADREL_FITTING_ELLIPSE_H
#define QUADREL_FITTING_ELLIPSE_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Fits an ellipse in space to points (3 x n, one point per column, n >= 5).
// foci (3 x 2) holds one focus per column, normal (3 x 1) the unit plane normal
// as PlaneFit gave it, focalSum the full major axis (2a). residuals (n x 1)
// combines each point's height e above the plane with its mismatch m of the
// focal sum as sqrt(e*e + m^4). The search result is used as it is, bounded by
// nothing: elongated ellipses (axes of 3 to 1 and beyond) are not reached from
// the circle. The outputs must be objects other than points.
QUADREL_API void EllipseFit(const CMatrix &points, CMatrix &foci, CMatrix &normal, double &focalSum,
                            CMatrix &residuals);

#endif  // QUADREL_FITTING_ELLIPSE_H
