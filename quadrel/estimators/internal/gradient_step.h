// One step of the climb up a fitted quadratic surface.
//
// The surface is f(x, y) = a0 x^2 + a1 x + a2 y^2 + a3 y + a4 x y + a5, in
// coordinates centred on the samples.
#ifndef QUADREL_ESTIMATORS_GRADIENT_STEP_H
#define QUADREL_ESTIMATORS_GRADIENT_STEP_H

#include "quadrel/matrix/matrix.h"

// Moves (x, y) by stepLength along the gradient of f at (x, y): the length of
// the step does not depend on the size of the gradient. heading becomes the
// direction of the step, atan2(gy, gx) in radians, and value becomes f at the
// new point. a is (a0, a1, a2, a3, a4), 5 x 1. At a point of zero gradient the
// direction is 0 / 0 and the new point is not a number.
void GradientStep(double &x, double &y, double &heading, double stepLength, const CMatrix &a,
                  double a5, double &value);

#endif  // QUADREL_ESTIMATORS_GRADIENT_STEP_H
