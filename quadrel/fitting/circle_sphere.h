// Circles and spheres through point sets, by linear least squares.
//
// Both fits minimise the algebraic distance, the mismatch of squared radii, in
// one solve and without iteration. CircleFit first finds the plane of the
// points with PlaneFit, turns the points so that the plane lies flat, fits the
// circle there and turns its centre back. SphereFit solves the same kind of
// system directly in space.
//
// A NaN or an infinity among the points reaches the solve, and SphereFit then
// gives NaN in the centre, the radius and every residual, with the usual
// shapes. CircleFit starts from PlaneFit and shares its handling of such input.
#ifndef QUADREL_FITTING_CIRCLE_SPHERE_H
#define QUADREL_FITTING_CIRCLE_SPHERE_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Fits a circle in space to points (3 x n, one point per column, n >= 3).
// centre (3 x 1) and radius give the circle, normal (3 x 1) is the unit normal
// of its plane as PlaneFit gave it. residuals (n x 1) is each point's distance
// from the nearest point of the circle, never negative; a point on the axis of
// the circle may give NaN. Collinear points are legal and give what the
// minimum-norm solve gives. The outputs must be objects other than points.
QUADREL_API void CircleFit(const CMatrix &points, CMatrix &centre, CMatrix &normal, double &radius,
                           CMatrix &residuals);

// Fits a sphere to points (3 x n, one point per column, n >= 4). centre (3 x 1)
// and radius give the sphere; residuals is a 1 x n row of each point's distance
// from the centre minus the radius: negative inside, positive outside. Coplanar
// points are legal and give what the minimum-norm solve gives. The outputs must
// be objects other than points.
QUADREL_API void SphereFit(const CMatrix &points, CMatrix &centre, double &radius,
                           CMatrix &residuals);

#endif  // QUADREL_FITTING_CIRCLE_SPHERE_H
