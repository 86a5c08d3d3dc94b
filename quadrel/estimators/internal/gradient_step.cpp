// One fixed-length step up the gradient of a quadratic surface.
#include "quadrel/estimators/internal/gradient_step.h"

#include <cmath>

void GradientStep(double &x, double &y, double &heading, double stepLength, const CMatrix &a,
                  double a5, double &value) {
  const double a0 = a(0);
  const double a1 = a(1);
  const double a2 = a(2);
  const double a3 = a(3);
  const double a4 = a(4);
  const double gx = 2.0 * a0 * x + a1 + a4 * y;
  const double gy = 2.0 * a2 * y + a3 + a4 * x;
  const double g = std::sqrt(gx * gx + gy * gy);
  x = stepLength * gx / g + x;
  y = stepLength * gy / g + y;
  heading = std::atan2(gy, gx);
  value = a0 * (x * x) + a1 * x + a2 * (y * y) + a3 * y + a4 * x * y + a5;
}
