// Gaussian (least-squares orthogonal-distance) cylinders and cones.
//
// Start: each of the three principal directions of the point scatter is tried
// as the axis; for each, an algebraic circle (cylinder) or radius-linear-in-
// height circle (cone) is fitted to the points seen along it in one linear
// solve, and the start with the least sum of squared orthogonal distances
// wins. It is then refined by damped Gauss-Newton on an axis that moves by
// small tilts in a frame set up afresh at every step, so no direction is
// singular; a cone passes through a cylinder (half-angle 0) without trouble.
//
// The axis point reported is the foot of the centroid of the points on the
// axis. The axis direction of a cylinder has its largest component positive;
// that of a cone points towards its wider end.
#ifndef QUADREL_METROLOGY_GAUSSIAN_CYLINDER_CONE_H
#define QUADREL_METROLOGY_GAUSSIAN_CYLINDER_CONE_H

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/export.h"
#include "quadrel/metrology/status.h"

// Fits a cylinder to points (3 x n, n >= 5, not all on one line). axisPoint
// and direction are 3 x 1. Residuals are the distance from the axis minus the
// radius, positive outside. Natural parameters (q = 7): axis point x, y, z,
// direction x, y, z, radius (rank 5).
QUADREL_METROLOGY_API MetrologyStatus GaussianCylinderFit(const CMatrix &points, CMatrix &axisPoint,
                                                          CMatrix &direction, double &radius,
                                                          GaussianFitInfo &info);

// Fits a cone to points (3 x n, n >= 6, not all in one plane). axisPoint and
// direction are 3 x 1; radius is the cone's radius at axisPoint and
// halfAngle (radians, >= 0) the angle between axis and surface lines, so the
// radius at height t along direction is radius + t tan(halfAngle). Residuals
// are orthogonal distances from the cone surface, positive outside. Natural
// parameters (q = 8): axis point x, y, z, direction x, y, z, half-angle,
// radius (rank 6).
QUADREL_METROLOGY_API MetrologyStatus GaussianConeFit(const CMatrix &points, CMatrix &axisPoint,
                                                      CMatrix &direction, double &halfAngle,
                                                      double &radius, GaussianFitInfo &info);

#endif  // QUADREL_METROLOGY_GAUSSIAN_CYLINDER_CONE_H
