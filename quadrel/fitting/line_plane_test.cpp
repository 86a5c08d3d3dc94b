#include "quadrel/fitting/line_plane.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/fitting/ellipse.h"
#include "quadrel/fitting/paraboloid.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

namespace {

TEST(LineFit, RecoversLineWithUnsignedResiduals) {
  // (1, 2, -3) + s (2, -1, 2) for s = -2, -1, 0, 1, 4.
  CMatrix centroid, direction, residuals;
  LineFit(MakeMatrix(3, 5, {-3, -1, 1, 3, 9, 4, 3, 2, 1, -2, -7, -5, -3, -1, 5}), centroid,
          direction, residuals);
  EXPECT_TRUE(Near(centroid, MakeCol({1.8, 1.6, -2.2}), 1e-15));
  EXPECT_NEAR(std::fabs(Dot(direction, MakeCol({2.0 / 3, -1.0 / 3, 2.0 / 3}))), 1.0, 1e-15);
  // The distance goes through an angle whose cosine rounds near 1, so a point
  // on the line may be off by about 2e-8 times its distance from the centroid.
  EXPECT_TRUE(Near(residuals, CMatrix(0.0, 5, 1), 2e-7));
  // h to either side of the X axis: every residual is +h.
  const double h = 0.25;
  LineFit(MakeMatrix(3, 4, {-3, -1, 1, 3, h, -h, -h, h, 0, 0, 0, 0}), centroid, direction,
          residuals);
  EXPECT_NEAR(std::fabs(direction(0)), 1.0, 1e-15);
  EXPECT_TRUE(Near(residuals, CMatrix(h, 4, 1), 1e-12));
}

TEST(Fits, NonFiniteOrOverflowingPointsGiveEveryOutputItsShape) {
  // Eight points near an ellipse in a tilted plane, then one coordinate NaN or
  // infinite, or all scaled until the scatter overflows. No quadratic form
  // passes the strict tests: LineFit falls back as for coincident points,
  // PlaneFit to column 0 of V, and the fits that start from it inherit that.
  CMatrix good(3, 8);
  for (int k = 0; k < 8; ++k) {
    const double x = 2.0 * std::cos(0.7 * k) + 1.0;
    good.SetCol(
        MakeCol({x, 1.5 * std::sin(0.7 * k) - 2.0, 0.2 * x + 3.0 + 0.01 * std::cos(2.1 * k)}), k);
  }
  CMatrix withNaN = good, withInf = good;
  withNaN(1, 3) = NAN;
  withInf(1, 3) = INFINITY;
  for (const CMatrix &points : {withNaN, withInf, 1e160 * good}) {
    CMatrix m1, m2, m3;
    double d1 = 0.0, d2 = 0.0, d3 = 0.0;
    auto shapes = [&](int r1, int c1, int r2, int c2, int r3, int c3) {
      return m1.GetRows() == r1 && m1.GetCols() == c1 && m2.GetRows() == r2 && m2.GetCols() == c2 &&
             m3.GetRows() == r3 && m3.GetCols() == c3;
    };
    LineFit(points, m1, m2, m3);
    EXPECT_TRUE(SameBits(m2, MakeCol({1, 0, 0})) && SameBits(m3, CMatrix(0.0, 8, 1)));
    EXPECT_TRUE(shapes(3, 1, 3, 1, 8, 1) && std::isfinite(m1(0)));
    PlaneFit(points, m1, m2, m3);
    EXPECT_TRUE(shapes(3, 1, 3, 1, 8, 1));
    CircleFit(points, m1, m2, d1, m3);
    EXPECT_TRUE(shapes(3, 1, 3, 1, 8, 1));
    EllipseFit(points, m1, m2, d1, m3);
    EXPECT_TRUE(shapes(3, 2, 3, 1, 8, 1));
    SphereFit(points, m1, d1, m3);
    EXPECT_TRUE(shapes(3, 1, 3, 1, 1, 8));
    ParaboloidFit(points, m1, d1, d2, d3, m3);
    EXPECT_TRUE(shapes(3, 1, 3, 1, 1, 8));
  }
}

TEST(Fits, CoincidentPointsGiveFixedAxesAndZeroResiduals) {
  // The line takes the X axis, the plane column 0 of V of a zero scatter.
  CMatrix U, W, V, centroid, axis, residuals(7.0, 2, 2);
  Svd(CMatrix(0.0, 3, 3), U, W, V);
  LineFit(CMatrix(-2.5, 3, 4), centroid, axis, residuals);
  EXPECT_TRUE(SameBits(centroid, CMatrix(-2.5, 3, 1)));
  EXPECT_TRUE(SameBits(axis, MakeCol({1, 0, 0})));
  EXPECT_TRUE(SameBits(residuals, CMatrix(0.0, 4, 1)));
  PlaneFit(CMatrix(2.5, 3, 4), centroid, axis, residuals);
  EXPECT_TRUE(SameBits(centroid, CMatrix(2.5, 3, 1)));
  EXPECT_TRUE(SameBits(axis, MakeCol({V(0, 0), V(1, 0), V(2, 0)})));
  EXPECT_TRUE(SameBits(residuals, CMatrix(0.0, 4, 1)));
}

TEST(Fits, AllocationsDoNotGrowWithPointCount) {
  auto count = [](int fit, int n) {
    const CMatrix points = TestRandom(7).Matrix(3, n);
    CMatrix m1, m2, m3;
    double d1 = 0.0, d2 = 0.0, d3 = 0.0;
    AllocationScope scope;
    if (fit == 0) LineFit(points, m1, m2, m3);
    if (fit == 1) PlaneFit(points, m1, m2, m3);
    if (fit == 2) CircleFit(points, m1, m2, d1, m3);
    if (fit == 3) SphereFit(points, m1, d1, m3);
    if (fit == 4) EllipseFit(points, m1, m2, d1, m3);
    if (fit == 5) ParaboloidFit(points, m1, d1, d2, d3, m3);
    // PlaneFit needs no heap at all once its outputs have their shape.
    if (fit == 1) {
      AllocationScope again;
      PlaneFit(points, m1, m2, m3);
      EXPECT_EQ(again.Count(), 0u) << n << " points";
    }
    return scope.Count();
  };
  for (int fit = 0; fit < 6; ++fit)
    EXPECT_EQ(count(fit, 20), count(fit, 1000)) << "fit " << fit;
}

}  // namespace
