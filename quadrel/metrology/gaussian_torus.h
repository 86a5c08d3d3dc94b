// Gaussian (least-squares orthogonal-distance) tori.
//
// The fit starts from CircleFit (the circle through the middle of the tube:
// its centre, normal and radius) with the mean distance of the points from
// that circle as tube radius, and refines by damped Gauss-Newton; the axis
// moves by small tilts in a frame set up afresh at every step. The start needs
// the points to show the ring's plane: a full ring or half of one serves, a
// quarter ring of a thick tube may lead the fit astray.
#ifndef QUADREL_METROLOGY_GAUSSIAN_TORUS_H
#define QUADREL_METROLOGY_GAUSSIAN_TORUS_H

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/export.h"
#include "quadrel/metrology/status.h"

// Fits a torus to points (3 x n, n >= 7, not all on one line). centre and axis
// (3 x 1; the axis has its largest component positive) with majorRadius (from
// the axis to the middle of the tube) and minorRadius (of the tube). Residuals
// are the distance from the middle circle of the tube minus minorRadius,
// positive outside the tube. Natural parameters (q = 8): centre x, y, z, axis
// x, y, z, major radius, minor radius (rank 7).
QUADREL_METROLOGY_API MetrologyStatus GaussianTorusFit(const CMatrix &points, CMatrix &centre,
                                                       CMatrix &axis, double &majorRadius,
                                                       double &minorRadius, GaussianFitInfo &info);

#endif  // QUADREL_METROLOGY_GAUSSIAN_TORUS_H
