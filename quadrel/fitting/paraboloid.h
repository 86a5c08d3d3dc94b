// Elliptic paraboloid with its axis along Z, by one linear least-squares solve.
//
// The model z = c0*x*x + 2*c1*x + c2*y*y + 2*c3*y + c4 has no xy term: the
// section axes of the surface must already run along X and Y. The fit reports
// it in vertex form,
//   z = z0 + sign * ((x - x0) / a)^2 + (c2 / |c2|) * ((y - y0) / b)^2.
//
// A NaN or an infinity among the points reaches the solve: vertex, a, b and
// every residual come out NaN, with the usual shapes, and sign is +1.0 (a NaN
// curvature is not negative).
#ifndef QUADREL_FITTING_PARABOLOID_H
#define QUADREL_FITTING_PARABOLOID_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Fits the paraboloid to points (3 x n, one point per column, n >= 5). vertex
// (3 x 1) is (x0, y0, z0); a and b are the distances from the vertex along X
// and Y at which the surface has risen or fallen by 1; sign is -1.0 when the X
// curvature is negative, else +1.0 (the sign along Y is not reported).
// residuals is a 1 x n row of vertical differences, positive above the
// surface. A flat direction gives an infinite a or b and a non-finite vertex.
// The outputs must be objects other than points.
QUADREL_API void ParaboloidFit(const CMatrix &points, CMatrix &vertex, double &a, double &b,
                               double &sign, CMatrix &residuals);

#endif  // QUADREL_FITTING_PARABOLOID_H
