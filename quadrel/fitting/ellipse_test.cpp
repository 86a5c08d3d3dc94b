#include "quadrel/fitting/ellipse.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/fitting/internal/ellipse_cost.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kPi = 3.141592653589793;
const double kU[3] = {1.0 / 3, 2.0 / 3, 2.0 / 3}, kV[3] = {2.0 / 3, 1.0 / 3, -2.0 / 3};
const double kN[3] = {-2.0 / 3, 2.0 / 3, -1.0 / 3};  // u x v
const double kCentre[3] = {2, -1, 5};

// Column k becomes the point at parameter angle t, h above the plane, of the
// ellipse with semi-axes 3 along u and 2 along v around (2, -1, 5).
void Put(CMatrix &points, int k, double t, double h) {
  for (int i = 0; i < 3; ++i)
    points(i, k) = kCentre[i] + 3 * std::cos(t) * kU[i] + 2 * std::sin(t) * kV[i] + h * kN[i];
}

TEST(EllipseFit, RecoversFociAndFocalSum) {
  // 30 points at t = 2 pi (k / 30)^1.5, and two more h above and below one
  // point of the ellipse: the plane does not move, and their residual is h.
  const double h = 1e-3;
  CMatrix points(3, 32), foci, normal, residuals;
  for (int k = 0; k < 30; ++k)
    Put(points, k, 2 * kPi * std::pow(k / 30.0, 1.5), 0.0);
  Put(points, 30, 1.0, h);
  Put(points, 31, 1.0, -h);
  double focalSum = 0.0;
  EllipseFit(points, foci, normal, focalSum, residuals);
  EXPECT_NEAR(focalSum, 6.0, 1e-9);
  EXPECT_NEAR(std::fabs(normal(0) * kN[0] + normal(1) * kN[1] + normal(2) * kN[2]), 1.0, 1e-14);
  // The foci lie sqrt(5) from the centre along u; the search decides which
  // one ends in column 0.
  ASSERT_TRUE(foci.GetRows() == 3 && foci.GetCols() == 2);
  const double side = foci(0, 0) > foci(0, 1) ? 1.0 : -1.0;
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(foci(i, 0), kCentre[i] + side * std::sqrt(5.0) * kU[i], 1e-9);
    EXPECT_NEAR(foci(i, 1), kCentre[i] - side * std::sqrt(5.0) * kU[i], 1e-9);
  }
  CMatrix expected(0.0, 32, 1);
  expected(30) = expected(31) = h;
  EXPECT_TRUE(Near(residuals, expected, 1e-9));
}

TEST(EllipseFit, SymmetricPointsStallNearTheCircle) {
  // Evenly spaced points leave the circle centre at rounding noise; the start
  // simplex steps by 10 % of that noise and the search ends near its start.
  CMatrix points(3, 24), foci, normal, residuals;
  for (int k = 0; k < 24; ++k)
    Put(points, k, 2 * kPi * k / 24, 0.0);
  double focalSum = 0.0;
  EllipseFit(points, foci, normal, focalSum, residuals);
  EXPECT_NEAR(focalSum, 5.05, 0.01);
  EXPECT_TRUE(Near(foci, MakeMatrix(3, 2, {2, 2, -1, -1, 5, 5}), 1e-6));
}

TEST(EllipseCost, IsTheMeanSquareMismatchOfTheFocalSum) {
  // Foci (-1, 0) and (1, 0), focal sum 4: (2, 0) lies on the ellipse, (0, 1)
  // misses by 4 - 2 sqrt(2). Row 2 is not read.
  const CMatrix p = MakeCol({-1, 0, 1, 0, 4});
  const CMatrix points = MakeMatrix(3, 2, {2, 0, 0, 1, 99, -99});
  const double m = 4 - std::sqrt(2.0) - std::sqrt(2.0);
  EXPECT_DOUBLE_EQ(EllipseCost(p, points), m * m / 2);
  EXPECT_EQ(EllipseCost(p, MakeCol({0, 1})), m * m);
}

}  // namespace
