// NaN and infinite elements in the point sets of the shape fits, and point sets
// whose scatter overflows.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/fitting/ellipse.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/fitting/paraboloid.h"
#include "quadrel/fitting/internal/simplex.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// Eight points near an ellipse in a tilted plane, and near z = x^2 + y^2 / 2
// for the paraboloid (z is replaced there); element (1, 3) set to bad, or with
// scale 1e160, finite points whose scatter overflows.
CMatrix Points(double bad, double scale = 1.0) {
  CMatrix p(3, 8);
  for (int k = 0; k < 8; ++k) {
    const double t = 0.7 * k;
    p(0, k) = 2.0 * std::cos(t) + 1.0;
    p(1, k) = 1.5 * std::sin(t) - 2.0;
    p(2, k) = 0.2 * p(0, k) + 3.0 + 0.01 * std::cos(3.0 * t);
    for (int i = 0; i < 3; ++i)
      p(i, k) *= scale;
  }
  p(1, 3) = std::isfinite(bad) ? p(1, 3) : bad;
  return p;
}

bool Shape(const CMatrix &m, int rows, int cols) {
  return m.GetRows() == rows && m.GetCols() == cols;
}

}  // namespace

// NaN, infinity or overflow leave no quadratic form that passes the strict
// tests. LineFit takes the x axis and zero residuals, as for coincident points,
// with the centroid showing what went wrong; PlaneFit falls back to column 0
// of V, and CircleFit and EllipseFit, which start from it, inherit that.
TEST(FittingNonFinite, LinePlaneCircleAndEllipseFitsFallBackToDefinedOutputs) {
  for (const CMatrix &points : {Points(kNaN), Points(kInf), Points(0.0, 1e160)}) {
    CMatrix centroid, direction, normal, residuals, foci;
    double radius = 0.0, focalSum = 0.0;
    LineFit(points, centroid, direction, residuals);
    EXPECT_TRUE(Shape(centroid, 3, 1) && SameBits(direction, MakeCol({1, 0, 0})));
    EXPECT_TRUE(SameBits(residuals, CMatrix(0.0, 8, 1)) && std::isfinite(centroid(0)));
    PlaneFit(points, centroid, normal, residuals);
    EXPECT_TRUE(Shape(centroid, 3, 1) && Shape(normal, 3, 1) && Shape(residuals, 8, 1));
    CircleFit(points, centroid, normal, radius, residuals);
    EXPECT_TRUE(Shape(centroid, 3, 1) && Shape(normal, 3, 1) && Shape(residuals, 8, 1));
    EllipseFit(points, foci, normal, focalSum, residuals);
    EXPECT_TRUE(Shape(foci, 3, 2) && Shape(normal, 3, 1) && Shape(residuals, 8, 1));
  }
}

TEST(FittingNonFinite, SphereAndParaboloidFitsGiveNaNThroughout) {
  const CMatrix nan3(kNaN, 3, 1), nan8(kNaN, 1, 8);
  CMatrix centre, residuals;
  double radius = 0.0, a = 0.0, b = 0.0, sign = 0.0;
  for (double bad : {kNaN, kInf}) {
    SphereFit(Points(bad), centre, radius, residuals);
    EXPECT_TRUE(SameValues(centre, nan3) && SameValues(residuals, nan8) && std::isnan(radius));
    ParaboloidFit(Points(bad), centre, a, b, sign, residuals);
    // A NaN curvature is not negative.
    EXPECT_TRUE(SameValues(centre, nan3) && SameValues(residuals, nan8));
    EXPECT_TRUE(std::isnan(a) && std::isnan(b) && sign == 1.0) << bad;
  }
  SphereFit(Points(0.0, 1e160), centre, radius, residuals);
  EXPECT_TRUE(Shape(centre, 3, 1) && Shape(residuals, 1, 8));
}

TEST(FittingNonFinite, SimplexSearchOnNaNCostsRunsToItsLimit) {
  // No comparison holds on NaN costs, so no test can end the search early: it
  // stops at the limit of iterations, with maxIter unchanged.
  CMatrix x = MakeCol({1.0, 2.0});
  double tolX = 1e-8, tolF = 1e-8;
  int maxIter = 50;
  SimplexMin([](const CMatrix &, const CMatrix &) { return kNaN; }, x, CMatrix(), tolX, tolF,
             maxIter);
  EXPECT_TRUE(maxIter == 50 && Shape(x, 2, 1));
}
