#include "quadrel/fitting/circle_sphere.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/testing/test_util.h"

namespace {

// count points around centre in the tilted plane spanned by u = (1, 2, 2) / 3
// and v = (2, 1, -2) / 3, at angles step * k^power, radius r + dr and height h
// along n = u x v, with dr and h changing sign from point to point.
CMatrix Ring(const CMatrix &centre, int count, double step, double power, double r, double dr,
             double h) {
  const double u[3] = {1.0 / 3, 2.0 / 3, 2.0 / 3}, v[3] = {2.0 / 3, 1.0 / 3, -2.0 / 3};
  const double n[3] = {-2.0 / 3, 2.0 / 3, -1.0 / 3};
  CMatrix points(3, count);
  for (int k = 0; k < count; ++k) {
    const double t = step * std::pow(k, power), sign = k % 2 ? -1 : 1;
    for (int i = 0; i < 3; ++i)
      points(i, k) =
          centre(i) + (r + sign * dr) * (std::cos(t) * u[i] + std::sin(t) * v[i]) + sign * h * n[i];
  }
  return points;
}

TEST(CircleFit, RecoversCircleWithUnsignedDistancesAsResiduals) {
  CMatrix centre, normal, residuals;
  double radius = 0.0;
  // Unevenly spaced, far from the origin.
  const CMatrix c = MakeCol({4, -7, 11});
  CircleFit(Ring(c, 7, 0.3, 2, 2.5, 0, 0), centre, normal, radius, residuals);
  EXPECT_TRUE(Near(centre, c, 1e-12));
  EXPECT_NEAR(radius, 2.5, 1e-12);
  EXPECT_NEAR(std::fabs(-2 * normal(0) + 2 * normal(1) - normal(2)) / 3, 1.0, 1e-14);
  EXPECT_TRUE(Near(residuals, CMatrix(0.0, 7, 1), 1e-12));
  const double step = 0.7853981633974483;  // pi / 4
  // Alternately h above and below the plane, on the circle when projected.
  CircleFit(Ring(c, 8, step, 1, 2, 0, 0.05), centre, normal, radius, residuals);
  EXPECT_NEAR(radius, 2.0, 1e-13);
  EXPECT_TRUE(Near(residuals, CMatrix(0.05, 8, 1), 1e-13));
  // In the plane, alternately e outside and inside. The algebraic fit puts the
  // radius at sqrt(r*r + e*e), so each residual is |radius - r_k|: about e on
  // both sides.
  CircleFit(Ring(c, 8, step, 1, 2, 0.01, 0), centre, normal, radius, residuals);
  EXPECT_NEAR(radius, std::sqrt(4.0001), 1e-13);
  for (int k = 0; k < 8; ++k)
    EXPECT_NEAR(residuals(k), std::fabs(radius - (k % 2 ? 1.99 : 2.01)), 1e-12) << k;
}

TEST(SphereFit, RecoversSphereWithSignedResiduals) {
  CMatrix centre, residuals;
  double radius = 0.0;
  // Cube corners, one tetrahedron at distance 3.5 and the other at 2.5: the
  // radius is sqrt(3*3 + 0.5*0.5), residuals are positive outside.
  CMatrix points(3, 8), expected(1, 8);
  for (int k = 0; k < 8; ++k) {
    const double s[3] = {k & 1 ? 1.0 : -1.0, k & 2 ? 1.0 : -1.0, k & 4 ? 1.0 : -1.0};
    const double rho = s[0] * s[1] * s[2] > 0 ? 3.5 : 2.5;
    points.SetCol(MakeCol({1 + s[0] * rho / std::sqrt(3.0), 2 + s[1] * rho / std::sqrt(3.0),
                           -1 + s[2] * rho / std::sqrt(3.0)}),
                  k);
    expected(k) = rho - std::sqrt(9.25);
  }
  SphereFit(points, centre, radius, residuals);
  EXPECT_TRUE(Near(centre, MakeCol({1, 2, -1}), 1e-13));
  EXPECT_NEAR(radius, std::sqrt(9.25), 1e-13);
  EXPECT_TRUE(Near(residuals, expected, 1e-13));
}

}  // namespace
