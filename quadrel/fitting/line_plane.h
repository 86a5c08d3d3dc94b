// Straight line and plane through a point set, by orthogonal regression.
//
// Both fits centre the points on their centroid, form the 3 x 3 scatter matrix
// and decompose it with Svd. The line runs along the singular vector on which
// the centred points project most, the plane is normal to the one on which they
// project least. Directions and normals are unit vectors with the sign that Svd
// gave them; nothing orients them.
//
// A NaN or an infinity among the points, or a scatter that overflows
// (coordinates beyond about 1e150), leaves no quadratic form that is a number.
// LineFit then takes its fallback: direction (1, 0, 0) and zero residuals, with
// the NaN or infinity showing in the centroid. PlaneFit takes column 0 of the
// singular vectors as normal, as for coincident points; its centroid, and
// residuals that are NaN or infinite, show what happened.
#ifndef QUADREL_FITTING_LINE_PLANE_H
#define QUADREL_FITTING_LINE_PLANE_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Fits a line to points (3 x n, one point per column, n >= 2). centroid (3 x 1)
// is the mean point, direction (3 x 1) the unit direction, residuals (n x 1) the
// distance of each point from the line, never negative. When the centred points
// show no scatter at all (they coincide and their mean is exact, or differ by
// less than about 1e-154) there is no direction to pick: direction is then
// (1, 0, 0) and every residual is 0.0. The outputs must be objects other than
// points.
QUADREL_API void LineFit(const CMatrix &points, CMatrix &centroid, CMatrix &direction,
                         CMatrix &residuals);

// Fits a plane to points (3 x n, one point per column, n >= 2; for a meaningful
// plane not all on one line). centroid (3 x 1) is the mean point, normal (3 x 1)
// the unit normal, residuals (n x 1) the signed distance of each point from the
// plane, positive on the side the normal points to. The outputs must be objects
// other than points.
QUADREL_API void PlaneFit(const CMatrix &points, CMatrix &centroid, CMatrix &normal,
                          CMatrix &residuals);

#endif  // QUADREL_FITTING_LINE_PLANE_H
