// The objective of the ellipse search.
#ifndef QUADREL_FITTING_ELLIPSE_COST_H
#define QUADREL_FITTING_ELLIPSE_COST_H

#include "quadrel/matrix/matrix.h"

// The mean over the columns of planePoints of m*m, where m = s - d1 - d2 is the
// mismatch of the focal sum: d1 and d2 are the distances of the point (rows 0
// and 1; further rows are not read) from the foci (parameters 0, 1) and
// (parameters 2, 3), and s is parameters(4). parameters is a 5 x 1 column.
// Exchanging the foci changes nothing.
double EllipseCost(const CMatrix &parameters, const CMatrix &planePoints);

#endif  // QUADREL_FITTING_ELLIPSE_COST_H
