// NaN and infinite elements in the point sets of the shape fits, and point sets
// whose scatter overflows.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/fitting/ellipse.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/fitting/paraboloid.h"
#include "quadrel/fitting/simplex.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// Eight points near an ellipse in a tilted plane, and near z = x^2 + y^2 / 2
// for the paraboloid (z is replaced there).
CMatrix Points() {
  CMatrix p(3, 8);
  for (int k = 0; k < 8; ++k) {
    const double t = 0.7 * k;
    p(0, k) = 2.0 * std::cos(t) + 1.0;
    p(1, k) = 1.5 * std::sin(t) - 2.0;
    p(2, k) = 0.2 * p(0, k) + 3.0 + 0.01 * std::cos(3.0 * t);
  }
  return p;
}

// The points with element (1, 3) replaced by bad.
CMatrix Spoilt(double bad) {
  CMatrix p = Points();
  p(1, 3) = bad;
  return p;
}

// Finite points so far out that the squares in their scatter overflow.
CMatrix Huge() {
  CMatrix p = Points();
  for (int k = 0; k < 8; ++k)
    for (int i = 0; i < 3; ++i)
      p(i, k) *= 1e160;
  return p;
}

bool AllNaN(const CMatrix &m) {
  for (int k = 0; k < m.GetRows() * m.GetCols(); ++k)
    if (!std::isnan(m(k / m.GetCols(), k % m.GetCols()))) return false;
  return true;
}

bool Shape(const CMatrix &m, int rows, int cols) {
  return m.GetRows() == rows && m.GetCols() == cols;
}

double NaNObjective(const CMatrix &, const CMatrix &) {
  return kNaN;
}

}  // namespace

TEST(FittingNonFinite, LineFitWithoutAMeasurableScatterFallsBackToTheXAxis) {
  // NaN, infinity or overflow leave no quadratic form that passes the strict
  // test: the fit takes the fixed direction and zero residuals, as for
  // coincident points. The centroid shows what went wrong.
  for (const CMatrix &points : {Spoilt(kNaN), Spoilt(kInf), Huge()}) {
    CMatrix centroid, direction, residuals;
    LineFit(points, centroid, direction, residuals);
    EXPECT_TRUE(Shape(centroid, 3, 1) && SameBits(direction, MakeCol({1, 0, 0})));
    EXPECT_TRUE(SameBits(residuals, CMatrix(0.0, 8, 1)));
    EXPECT_TRUE(std::isfinite(centroid(0)));
  }
}

// No column of V has a quadratic form that is a number here; PlaneFit falls
// back to column 0.
TEST(FittingNonFinite, PlaneFitOnNaNOrOverflowGivesDefinedOutputs) {
  for (const CMatrix &points : {Spoilt(kNaN), Spoilt(kInf), Huge()}) {
    CMatrix centroid, normal, residuals;
    PlaneFit(points, centroid, normal, residuals);
    EXPECT_TRUE(Shape(centroid, 3, 1) && Shape(normal, 3, 1) && Shape(residuals, 8, 1));
  }
}

// CircleFit and EllipseFit start from PlaneFit and inherit its fallback.
TEST(FittingNonFinite, CircleAndEllipseFitsOnNaNOrOverflowGiveDefinedOutputs) {
  for (const CMatrix &points : {Spoilt(kNaN), Spoilt(kInf), Huge()}) {
    CMatrix centre, normal, residuals, foci;
    double radius = 0.0;
    CircleFit(points, centre, normal, radius, residuals);
    EXPECT_TRUE(Shape(centre, 3, 1) && Shape(normal, 3, 1) && Shape(residuals, 8, 1));
    double focalSum = 0.0;
    EllipseFit(points, foci, normal, focalSum, residuals);
    EXPECT_TRUE(Shape(foci, 3, 2) && Shape(normal, 3, 1) && Shape(residuals, 8, 1));
  }
}

TEST(FittingNonFinite, SphereAndParaboloidFitsGiveNaNThroughout) {
  for (double bad : {kNaN, kInf}) {
    CMatrix centre, residuals;
    double radius = 0.0;
    SphereFit(Spoilt(bad), centre, radius, residuals);
    EXPECT_TRUE(Shape(centre, 3, 1) && AllNaN(centre) && std::isnan(radius)) << bad;
    EXPECT_TRUE(Shape(residuals, 1, 8) && AllNaN(residuals)) << bad;

    CMatrix vertex;
    double a = 0.0, b = 0.0, sign = 0.0;
    ParaboloidFit(Spoilt(bad), vertex, a, b, sign, residuals);
    // A NaN curvature is not negative.
    EXPECT_TRUE(AllNaN(vertex) && std::isnan(a) && std::isnan(b) && sign == 1.0) << bad;
    EXPECT_TRUE(Shape(residuals, 1, 8) && AllNaN(residuals)) << bad;
  }
  CMatrix centre, residuals;
  double radius = 0.0;
  SphereFit(Huge(), centre, radius, residuals);
  EXPECT_TRUE(Shape(centre, 3, 1) && Shape(residuals, 1, 8));
}

TEST(FittingNonFinite, SimplexSearchOnNaNCostsRunsToItsLimit) {
  // No comparison holds on NaN costs, so no test can end the search early: it
  // stops at the limit of iterations, with maxIter unchanged.
  CMatrix x = MakeCol({1.0, 2.0});
  double tolX = 1e-8, tolF = 1e-8;
  int maxIter = 50;
  SimplexMin(NaNObjective, x, CMatrix(), tolX, tolF, maxIter);
  EXPECT_EQ(maxIter, 50);
  EXPECT_TRUE(Shape(x, 2, 1));
}
