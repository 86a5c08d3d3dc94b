// NaN, infinite and overflowing input to the two estimators.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "quadrel/estimators/quality_peak.h"
#include "quadrel/estimators/trihedral.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const double kPi = 3.141592653589793;

// Four points on each of the planes x = 1, y = 2 and z = 3, scaled by s.
CMatrix OnX(double s) {
  return MakeMatrix(3, 4, {s, s, s, s, 3 * s, 4 * s, 5 * s, 3 * s, 4 * s, 4 * s, 5 * s, 6 * s});
}
CMatrix OnY(double s) {
  return MakeMatrix(
      3, 4, {2 * s, 3 * s, 4 * s, 2 * s, 2 * s, 2 * s, 2 * s, 2 * s, 4 * s, 4 * s, 5 * s, 6 * s});
}
CMatrix OnZ(double s) {
  return MakeMatrix(
      3, 4, {2 * s, 3 * s, 4 * s, 2 * s, 3 * s, 4 * s, 5 * s, 3 * s, 3 * s, 3 * s, 3 * s, 3 * s});
}

// Quality on a 5 x 5 grid of positions -2 .. 2 (times scale), peak near the
// middle.
void Grid(double scale, CMatrix &quality, CMatrix &positions) {
  quality = CMatrix(25, 1);
  positions = CMatrix(2, 25);
  for (int k = 0; k < 25; ++k) {
    const double x = k / 5 - 2.0, y = k % 5 - 2.0;
    positions(0, k) = x * scale;
    positions(1, k) = y * scale;
    quality(k) = 10.0 - (x - 0.3) * (x - 0.3) - (y + 0.2) * (y + 0.2);
  }
}

}  // namespace

TEST(EstimatorsNonFinite, TrihedralFitCallsNonFiniteInputDegenerate) {
  CMatrix result;
  for (double angle : {kNaN, kInf, -kInf}) {
    result = CMatrix(1.0, 2, 2);
    EXPECT_EQ(IdealTrihedralFit(OnX(1), OnY(1), OnZ(1), result, angle), 5) << angle;
    EXPECT_TRUE(SameBits(result, CMatrix(0.0, 3, 3))) << angle;
  }
  // A short set is reported before a bad value in another set.
  CMatrix bad = OnZ(1);
  bad(0, 0) = -kInf;
  EXPECT_EQ(IdealTrihedralFit(OnX(1), CMatrix(0.0, 3, 2), bad, result, kPi / 2), 2);
  EXPECT_EQ(IdealTrihedralFit(OnX(1), OnY(1), bad, result, kPi / 2), 5);
}

// Finite points whose scatter overflows pass the finiteness test and reach
// PlaneFit, whose fallback keeps the seed defined.
TEST(EstimatorsNonFinite, TrihedralFitOnOverflowingScatterReturnsACode) {
  CMatrix result;
  const int status = IdealTrihedralFit(OnX(1e160), OnY(1e160), OnZ(1e160), result, kPi / 2);
  EXPECT_TRUE(status == 0 || status == 4 || status == 5) << status;
  EXPECT_TRUE(result.GetRows() == 3 && result.GetCols() == 3);
}

TEST(EstimatorsNonFinite, QualityPeakFallsBackOnTheBestSample) {
  CMatrix quality, positions, peak;
  Grid(1.0, quality, positions);
  // An infinite quality is the best sample; a NaN one is skipped by Max unless
  // it comes first.
  quality(7) = kInf;
  EXPECT_EQ(FindQualityPeak(quality, positions, peak), 4);
  EXPECT_TRUE(SameBits(peak, MakeCol({-1, 0})));
  Grid(1.0, quality, positions);
  quality(0) = kNaN;
  EXPECT_EQ(FindQualityPeak(quality, positions, peak), 4);
  EXPECT_TRUE(SameBits(peak, MakeCol({-2, -2})));
  // Finite positions whose squares overflow make the surface fit not finite;
  // the call still ends with a code and a 2 x 1 peak.
  Grid(1e160, quality, positions);
  const int status = FindQualityPeak(quality, positions, peak);
  EXPECT_TRUE(status >= 0 && status <= 5) << status;
  EXPECT_TRUE(peak.GetRows() == 2 && peak.GetCols() == 1);
}
