// Downhill simplex (Nelder-Mead) minimisation without derivatives.
//
// Internal to the library: EllipseFit refines its parameters with it. The
// objective is a plain function of a parameter column and a data matrix that
// the search hands through untouched.
#ifndef QUADREL_FITTING_SIMPLEX_H
#define QUADREL_FITTING_SIMPLEX_H

#include "quadrel/matrix/matrix.h"

// Minimises objective(x, data) over x, starting from x (an n x 1 column, n >= 1)
// and its neighbours x + 10 % of one coordinate each (0.005 for a coordinate
// that is exactly 0). The search stops when the simplex is smaller than tolX
// and its values spread less than tolF, both strictly, or after maxIter
// iterations (maxIter >= 1). On return x is the best vertex, tolX and tolF hold
// the size and spread last measured, maxIter the iterations done; the result is
// the objective at x. objective must not change its arguments.
double SimplexMin(double (*objective)(const CMatrix &x, const CMatrix &data), CMatrix &x,
                  const CMatrix &data, double &tolX, double &tolF, int &maxIter);

#endif  // QUADREL_FITTING_SIMPLEX_H
