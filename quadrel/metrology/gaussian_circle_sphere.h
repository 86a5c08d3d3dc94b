// Gaussian (least-squares orthogonal-distance) circles in space and spheres.
//
// Both fits start from the library's algebraic fits (CircleFit, SphereFit) and
// minimise the sum of squared orthogonal distances by damped Gauss-Newton. The
// circle's normal moves by small tilts in a frame set up afresh at every step,
// so no direction is singular.
#ifndef QUADREL_METROLOGY_GAUSSIAN_CIRCLE_SPHERE_H
#define QUADREL_METROLOGY_GAUSSIAN_CIRCLE_SPHERE_H

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/export.h"
#include "quadrel/metrology/status.h"

// Fits a circle in space to points (3 x n, n >= 3, not all on one line). The
// distance of a point from the circle is sqrt(h^2 + (rho - r)^2), h its height
// over the circle's plane and rho its distance from the axis; the residual
// carries the sign of rho - r (positive outside). centre and normal are 3 x 1,
// the normal a unit vector whose largest component is positive. Natural
// parameters (q = 7): centre x, y, z, normal x, y, z, radius (rank 6).
QUADREL_METROLOGY_API MetrologyStatus GaussianCircleFit(const CMatrix &points, CMatrix &centre,
                                                        CMatrix &normal, double &radius,
                                                        GaussianFitInfo &info);

// Fits a sphere to points (3 x n, n >= 4, not all in one plane). Residuals are
// |p - centre| - radius, positive outside. Natural parameters (q = 4): centre
// x, y, z, radius.
QUADREL_METROLOGY_API MetrologyStatus GaussianSphereFit(const CMatrix &points, CMatrix &centre,
                                                        double &radius, GaussianFitInfo &info);

#endif  // QUADREL_METROLOGY_GAUSSIAN_CIRCLE_SPHERE_H
