#include "quadrel/estimators/quality_peak.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/estimators/internal/gradient_step.h"
#include "quadrel/testing/test_util.h"

namespace {

using QualityFn = double (*)(double X, double Y, double s);

// Samples on the 7 x 7 grid from -3 to 3, X (index i) running slowest; s is +1
// or -1 as i + j is even or odd.
void Grid(QualityFn f, CMatrix &quality, CMatrix &positions) {
  quality = CMatrix(49, 1);
  positions = CMatrix(2, 49);
  for (int k = 0; k < 49; ++k) {
    positions(0, k) = k / 7 - 3.0;
    positions(1, k) = k % 7 - 3.0;
    quality(k) = f(positions(0, k), positions(1, k), (k / 7 + k % 7) % 2 == 0 ? 1.0 : -1.0);
  }
}

TEST(GradientStep, StepsUphillByFixedLength) {
  // f = 10 - x^2 - y^2 from (1, 0): the gradient (-2, 0) points to -X.
  double x = 1.0, y = 0.0, heading = 0.0, value = 0.0;
  GradientStep(x, y, heading, 0.5, MakeCol({-1, 0, -1, 0, 0}), 10.0, value);
  EXPECT_TRUE(
      SameBits(MakeRow({x, y, heading, value}), MakeRow({0.5, 0.0, std::atan2(0.0, -2.0), 9.75})));
}

TEST(FindQualityPeak, GridCasesGiveTheirCodeAndPosition) {
  struct Case {
    const char *name;
    QualityFn quality;
    int code;
    double x, y, tol;
  } cases[] = {
      {"concave, maximum between samples",
       [](double X, double Y, double) {
         return 100 - 2 * (X - .4) * (X - .4) - 3 * (Y + .7) * (Y + .7) + .5 * (X - .4) * (Y + .7);
       },
       0, 0.4, -0.7, 1e-9},
      // sigma = 0: the band has no width and the first tested step leaves it.
      {"maximum far out, exact",
       [](double X, double Y, double) { return 100 - (X - 6) * (X - 6) - (Y - 1) * (Y - 1); }, 5,
       3.8, 1.0, 1e-9},
      {"plane from corner (3, 3)", [](double X, double Y, double) { return 50 + 3 * X + 2 * Y; }, 5,
       3 + 2.4 / std::sqrt(13.0), 3 + 1.6 / std::sqrt(13.0), 1e-9},
      {"maximum beyond reach",
       [](double X, double Y, double s) {
         return 100 - .01 * ((X - 6) * (X - 6) + (Y - 1) * (Y - 1)) + .1 * s;
       },
       2, 5.40, 1.10, 0.01},
      // Four best samples; the first is (-3, -1).
      {"saddle", [](double X, double Y, double s) { return 100 + .005 * (X * X - Y * Y) + .3 * s; },
       3, -5.40, -0.94, 0.01},
      // Six steps out along the diagonal from the corner (-3, -3).
      {"bowl", [](double X, double Y, double s) { return 100 + .01 * (X * X + Y * Y) + .3 * s; }, 3,
       -3 - 2.4 / std::sqrt(2.0), -3 - 2.4 / std::sqrt(2.0), 0.01},
      {"turn past a saddle",
       [](double X, double Y, double s) {
         return 100 + .02 * ((X - .02) * (X - .02) - (Y - 1) * (Y - 1)) + .6 * s +
                (X == 0 && Y == 0 ? .35 : 0);
       },
       1, -0.71, 1.44, 0.01},
      // Headings just below pi, then just above -pi: a small turn, not 2 pi.
      {"turn across atan2 cut",
       [](double X, double Y, double s) {
         return 100 - .05 * X + .005 * (X + .1) * Y + s + (X == 0 && Y == 0 ? .3 : 0);
       },
       3, -2.4, 0.0, 0.2},
      // Non-finite samples end the search on the best sample: an infinite one,
      // or the NaN that Max keeps in first place.
      {"infinite sample",
       [](double X, double Y, double) { return X == -2 && Y == 0 ? INFINITY : 10 - X * X - Y * Y; },
       4, -2.0, 0.0, 0.0},
      {"NaN first sample",
       [](double X, double Y, double) { return X == -3 && Y == -3 ? NAN : 10 - X * X - Y * Y; }, 4,
       -3.0, -3.0, 0.0},
      {"poor fit",
       [](double X, double Y, double) { return 100 * std::cos(3 * X) * std::cos(3 * Y); }, 4, 0.0,
       0.0, 0.0},
  };
  for (const Case &c : cases) {
    CMatrix quality, positions;
    Grid(c.quality, quality, positions);
    CMatrix peak(-1.0, 3, 4);
    EXPECT_EQ(FindQualityPeak(quality, positions, peak), c.code) << c.name;
    EXPECT_TRUE(Near(peak, MakeCol({c.x, c.y}), c.tol)) << c.name;
  }
}

TEST(FindQualityPeak, SamplesOnOneLineOrASingleSample) {
  CMatrix quality(8, 1), positions(2, 8), peak;
  for (int t = 0; t < 8; ++t) {
    positions(0, t) = positions(1, t) = t;
    quality(t) = 100 - (t - 1.3) * (t - 1.3);
  }
  EXPECT_EQ(FindQualityPeak(quality, positions, peak), 0);
  EXPECT_TRUE(Near(peak, MakeCol({1.3, 1.3}), 1e-9));
  // One sample is its own peak, with the code of a poor fit.
  EXPECT_EQ(FindQualityPeak(MakeCol({7.0}), MakeCol({1.5, -2.5}), peak), 4);
  EXPECT_TRUE(SameBits(peak, MakeCol({1.5, -2.5})));
}

}  // namespace
