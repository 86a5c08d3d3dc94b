// Gaussian (least-squares orthogonal-distance) lines and planes.
//
// For these two features the orthogonal regression has a closed form: the
// feature passes through the centroid, along the principal direction of the
// scatter (line) or normal to its least one (plane). The fits take it from
// LineFit and PlaneFit and add what a metrologist needs beside it: the status,
// the residuals and the covariance of the parameters. Directions and normals
// are unit vectors whose component of largest magnitude is positive.
#ifndef QUADREL_METROLOGY_GAUSSIAN_LINE_PLANE_H
#define QUADREL_METROLOGY_GAUSSIAN_LINE_PLANE_H

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/export.h"
#include "quadrel/metrology/status.h"

// Fits a line to points (3 x n, n >= 2). point (3 x 1) is the centroid,
// direction (3 x 1) the unit direction. Residuals are distances from the line,
// never negative. Natural parameters (q = 6): point x, y, z, direction x, y, z
// (the covariance has rank 4). Coincident points give kDegenerate.
QUADREL_METROLOGY_API MetrologyStatus GaussianLineFit(const CMatrix &points, CMatrix &point,
                                                      CMatrix &direction, GaussianFitInfo &info);

// Fits a plane to points (3 x n, n >= 3). point (3 x 1) is the centroid,
// normal (3 x 1) the unit normal. Residuals are signed distances, positive on
// the side the normal points to. Natural parameters (q = 6): point x, y, z,
// normal x, y, z (rank 3). Collinear or coincident points give kDegenerate.
QUADREL_METROLOGY_API MetrologyStatus GaussianPlaneFit(const CMatrix &points, CMatrix &point,
                                                       CMatrix &normal, GaussianFitInfo &info);

#endif  // QUADREL_METROLOGY_GAUSSIAN_LINE_PLANE_H
