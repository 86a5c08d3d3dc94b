#include "quadrel/fitting/paraboloid.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/fitting/internal/sign_ref.h"
#include "quadrel/testing/test_util.h"

namespace {

// Points of z = 0.8 + sx ((x - 0.3) / 1.7)^2 + sy ((y + 0.2) / 0.9)^2 on a
// 5 x 5 grid.
CMatrix Surface(double sx, double sy) {
  CMatrix points(3, 25);
  for (int k = 0; k < 25; ++k) {
    const double x = -1.0 + 0.5 * (k % 5), y = -0.8 + 0.4 * (k / 5);
    const double u = (x - 0.3) / 1.7, v = (y + 0.2) / 0.9;
    points.SetCol(MakeCol({x, y, 0.8 + sx * u * u + sy * v * v}), k);
  }
  return points;
}

TEST(ParaboloidFit, RecoversVertexFormAndXCurvatureSign) {
  // A bowl, the same upside down, and a saddle that only the Y sign tells apart.
  const double cases[3][3] = {{1, 1, 1}, {-1, -1, -1}, {1, -1, 1}};
  for (const auto &s : cases) {
    CMatrix vertex, residuals;
    double a = 0.0, b = 0.0, sign = 0.0;
    ParaboloidFit(Surface(s[0], s[1]), vertex, a, b, sign, residuals);
    EXPECT_TRUE(Near(vertex, MakeCol({0.3, -0.2, 0.8}), 1e-12)) << s[0] << " " << s[1];
    EXPECT_NEAR(a, 1.7, 1e-12);
    EXPECT_NEAR(b, 0.9, 1e-12);
    EXPECT_EQ(sign, s[2]);
    EXPECT_TRUE(Near(residuals, CMatrix(0.0, 1, 25), 1e-13));
  }
  // The sign of -0.0 and of NaN counts as positive.
  EXPECT_EQ(SignRef(-1e-300), -1.0);
  EXPECT_EQ(SignRef(-0.0), 1.0);
  EXPECT_EQ(SignRef(NAN), 1.0);
}

}  // namespace
