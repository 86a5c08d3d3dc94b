// Bad input, uncertainties and the residual conventions of the Gaussian fits.
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/metrology/metrology.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

CMatrix Points(const std::vector<double> &xyz) {
  const int n = static_cast<int>(xyz.size() / 3);
  CMatrix m(3, n);
  for (int i = 0; i < n; ++i)
    for (int r = 0; r < 3; ++r)
      m(r, i) = xyz[3 * i + r];
  return m;
}

// Deterministic normal deviates (Box-Muller on an LCG).
class Noise {
 public:
  double Normal() {
    const double u1 = Uniform(), u2 = Uniform();
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
  }

 private:
  double Uniform() {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return (static_cast<double>(state_ >> 11) + 0.5) * (1.0 / 9007199254740992.0);
  }
  unsigned long long state_ = 42;
};

}  // namespace

TEST(GaussianFit, BadInputGivesAStatusAndNaN) {
  CMatrix c, n;
  double r = 0.0;
  GaussianFitInfo info;
  // Too few points, a wrong shape, a NaN coordinate.
  EXPECT_EQ(GaussianSphereFit(Points({0, 0, 0, 1, 0, 0, 0, 1, 0}), c, r, info),
            MetrologyStatus::kTooFewPoints);
  EXPECT_TRUE(std::isnan(r) && std::isnan(c(0, 0)));
  EXPECT_EQ(GaussianSphereFit(CMatrix(0.0, 2, 10), c, r, info), MetrologyStatus::kBadShape);
  EXPECT_EQ(GaussianCircleFit(Points({1, 0, 0, 0, 1, 0, -1, 0, kNaN}), c, n, r, info),
            MetrologyStatus::kNonFinite);
  EXPECT_EQ(info.residuals.GetRows(), 3);
  EXPECT_TRUE(std::isnan(info.residuals(2, 0)));
  // Points that do not fix the feature: four on one circle for a sphere,
  // three on a line for a circle, one point twice for a line.
  EXPECT_EQ(GaussianSphereFit(Points({1, 0, 0, 0, 1, 0, -1, 0, 0, 0, -1, 0}), c, r, info),
            MetrologyStatus::kDegenerate);
  EXPECT_EQ(GaussianCircleFit(Points({0, 0, 0, 1, 1, 1, 2, 2, 2}), c, n, r, info),
            MetrologyStatus::kDegenerate);
  EXPECT_EQ(GaussianLineFit(Points({1, 2, 3, 1, 2, 3}), c, n, info), MetrologyStatus::kDegenerate);
  EXPECT_EQ(GaussianPlaneFit(Points({0, 0, 0, 1, 1, 1, 2, 2, 2}), c, n, info),
            MetrologyStatus::kDegenerate);
  // All points on one line for a cylinder; too few for a cone.
  double angle = 0.0;
  EXPECT_EQ(GaussianCylinderFit(Points({0, 0, 0, 1, 2, 3, 2, 4, 6, 3, 6, 9, 5, 10, 15, 7, 14, 21}),
                                c, n, r, info),
            MetrologyStatus::kDegenerate);
  EXPECT_TRUE(std::isnan(r) && std::isnan(n(2, 0)) && std::isnan(info.covariance(6, 6)));
  EXPECT_EQ(
      GaussianConeFit(Points({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1}), c, n, angle, r, info),
      MetrologyStatus::kTooFewPoints);
  double minor = 0.0;
  EXPECT_EQ(GaussianTorusFit(CMatrix(0.0, 3, 6), c, n, r, minor, info),
            MetrologyStatus::kTooFewPoints);
  EXPECT_TRUE(std::isnan(minor) && info.covariance.GetRows() == 8);
  EXPECT_STREQ(MetrologyStatusMessage(MetrologyStatus::kDegenerate),
               "the points do not determine the feature");
}

// The standard uncertainties that one fit reports must match the spread of
// the parameters over many noisy repetitions of the same measurement.
TEST(GaussianFit, UncertaintiesMatchTheSpreadOfRepeatedFits) {
  const int trials = 400, n = 40;
  const double sigma = 0.01, radius = 5.0;
  Noise noise;
  double sum[2][4] = {}, sumSq[2][4] = {}, reported[2][4] = {};
  for (int trial = 0; trial < trials; ++trial) {
    // A half circle in the plane z = 1 and a hemisphere.
    CMatrix circle(3, n), sphere(3, n);
    for (int i = 0; i < n; ++i) {
      const double phi = 3.141592653589793 * (i + 0.5) / n;
      const double rc = radius + sigma * noise.Normal();
      circle(0, i) = rc * std::cos(phi);
      circle(1, i) = rc * std::sin(phi);
      circle(2, i) = 1.0 + sigma * noise.Normal();
      const double z = (i + 0.5) / n, s = std::sqrt(1.0 - z * z), az = 2.399963 * i;
      const double rs = radius + sigma * noise.Normal();
      sphere(0, i) = rs * s * std::cos(az);
      sphere(1, i) = rs * s * std::sin(az);
      sphere(2, i) = rs * z;
    }
    CMatrix c, nrm;
    double r = 0.0;
    GaussianFitInfo info;
    // Sums the centre and radius of fit f and the uncertainties reported at rows.
    const auto add = [&](int f, const int(&rows)[4]) {
      const double values[4] = {c(0, 0), c(1, 0), c(2, 0), r};
      for (int k = 0; k < 4; ++k) {
        sum[f][k] += values[k];
        sumSq[f][k] += values[k] * values[k];
        reported[f][k] += info.uncertainties(rows[k], 0) / trials;
      }
    };
    ASSERT_EQ(GaussianCircleFit(circle, c, nrm, r, info), MetrologyStatus::kConverged);
    add(0, {0, 1, 2, 6});
    ASSERT_EQ(GaussianSphereFit(sphere, c, r, info), MetrologyStatus::kConverged);
    add(1, {0, 1, 2, 3});
  }
  for (int f = 0; f < 2; ++f) {
    for (int k = 0; k < 4; ++k) {
      const double mean = sum[f][k] / trials;
      const double spread = std::sqrt((sumSq[f][k] - trials * mean * mean) / (trials - 1));
      EXPECT_NEAR(reported[f][k] / spread, 1.0, 0.15) << "feature " << f << " parameter " << k;
    }
  }
}
