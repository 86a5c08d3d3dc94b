// The fits form their sums straight from the points, without the centred copy,
// the transposes and the stored turned points of the plain formulation. These
// tests hold them to that formulation, written out with public functions only,
// bit for bit.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/fitting/ellipse.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/fitting/paraboloid.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/geometry/distances.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/scalar.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

namespace {

// Both fits: centroid, centred copy, scatter C * C', Svd, and the column of V
// with the greatest (line) or least (plane) quadratic form.
void LiteralAxes(const CMatrix &points, bool line, CMatrix &centroid, CMatrix &axis, CMatrix &Ct) {
  CMatrix C(points);
  centroid = Transpose(Mean(Transpose(C)));
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < C.GetCols(); ++j)
      C(i, j) = C(i, j) - centroid(i);
  Ct = Transpose(C);
  const CMatrix S = LiteralProduct(C, Ct);
  CMatrix U, W, V;
  Svd(S, U, W, V);
  int best = -1;
  double bestValue = line ? 2.2250738585072014e-308 : 1.7976931348623157e+308;
  for (int j = 0; j < 3; ++j) {
    const double u0 = V(0, j), u1 = V(1, j), u2 = V(2, j);
    const double q = u0 * u0 * S(0, 0) + u1 * u1 * S(1, 1) + u2 * u2 * S(2, 2) +
                     2.0 * (u0 * u1 * S(0, 1) + u0 * u2 * S(0, 2) + u1 * u2 * S(1, 2));
    if (line ? q > bestValue : q < bestValue) {
      best = j;
      bestValue = q;
    }
  }
  axis = Col(V, best);
}

void LiteralPlaneFit(const CMatrix &points, CMatrix &centroid, CMatrix &normal,
                     CMatrix &residuals) {
  CMatrix Ct;
  LiteralAxes(points, false, centroid, normal, Ct);
  residuals = LiteralProduct(Ct, normal);
}

void LiteralLineFit(const CMatrix &points, CMatrix &centroid, CMatrix &direction,
                    CMatrix &residuals) {
  CMatrix Ct;
  LiteralAxes(points, true, centroid, direction, Ct);
  residuals.Resize(points.GetCols(), 1);
  for (int i = 0; i < points.GetCols(); ++i)
    residuals(i) = LinePointDist(centroid, direction, Col(points, i));
}

void LiteralSphereFit(const CMatrix &points, CMatrix &centre, double &radius, CMatrix &residuals) {
  const int n = points.GetCols();
  CMatrix D(n, 4), b(n, 1);
  for (int i = 0; i < n; ++i) {
    const double x = points(0, i), y = points(1, i), z = points(2, i);
    D(i, 0) = 1.0;
    D(i, 1) = 2.0 * x;
    D(i, 2) = 2.0 * y;
    D(i, 3) = 2.0 * z;
    b(i) = x * x + y * y + z * z;
  }
  CMatrix a;
  Lsq(D, b, a);
  radius = std::sqrt(AbsRef(a(0) + a(1) * a(1) + a(2) * a(2) + a(3) * a(3)));
  centre.Resize(3, 1);
  centre(0) = a(1);
  centre(1) = a(2);
  centre(2) = a(3);
  residuals.Resize(1, n);
  for (int i = 0; i < n; ++i)
    residuals(i) = Norm2(Col(points, i) - centre) - radius;
}

void LiteralCircleFit(const CMatrix &points, CMatrix &centre, CMatrix &normal, double &radius,
                      CMatrix &residuals) {
  CMatrix c0;
  LiteralPlaneFit(points, c0, normal, residuals);
  const CMatrix t = Cart2Sph(normal);
  const CMatrix R = Rotation(t(1), t(2));
  const CMatrix Q = LiteralProduct(R, points);
  const int n = points.GetCols();
  CMatrix D(0.0, n, 3), b(0.0, n, 1);
  double zmean = 0.0;
  for (int i = 0; i < n; ++i) {
    const double x = Q(0, i), y = Q(1, i), z = Q(2, i);
    D(i, 0) = 1.0;
    D(i, 1) = 2.0 * x;
    D(i, 2) = 2.0 * y;
    b(i) = x * x + y * y;
    zmean += z;
  }
  zmean /= n;
  CMatrix a;
  Lsq(D, b, a);
  radius = std::sqrt(AbsRef(a(0) + a(1) * a(1) + a(2) * a(2)));
  CMatrix c(3, 1);
  c(0) = a(1);
  c(1) = a(2);
  c(2) = zmean;
  centre = LiteralProduct(Transpose(R), c);
  for (int i = 0; i < n; ++i) {
    const double p = residuals(i);
    const double d = Norm2(Col(Q, i) - c);
    const double e = radius - std::sqrt(d * d - p * p);
    residuals(i) = std::sqrt(p * p + e * e);
  }
}

void LiteralParaboloidFit(const CMatrix &points, CMatrix &vertex, double &a, double &b,
                          double &sign, CMatrix &residuals) {
  const int n = points.GetCols();
  CMatrix D(n, 5), z(n, 1);
  for (int i = 0; i < n; ++i) {
    const double x = points(0, i), y = points(1, i);
    D(i, 0) = x * x;
    D(i, 1) = 2.0 * x;
    D(i, 2) = y * y;
    D(i, 3) = 2.0 * y;
    D(i, 4) = 1.0;
    z(i) = points(2, i);
  }
  CMatrix c;
  Lsq(D, z, c);
  const double c0 = c(0), c1 = c(1), c2 = c(2), c3 = c(3), c4 = c(4);
  a = std::sqrt(1.0 / AbsRef(c0));
  b = std::sqrt(1.0 / AbsRef(c2));
  sign = c0 < 0.0 ? -1.0 : 1.0;
  vertex.Resize(3, 1);
  vertex(0) = -c1 / c0;
  vertex(1) = -c3 / c2;
  vertex(2) = (c4 - c1 * c1 / c0) - c3 * c3 / c2;
  residuals.Resize(1, n);
  for (int i = 0; i < n; ++i) {
    const double x = points(0, i), y = points(1, i);
    residuals(i) = points(2, i) - x * c0 * x - 2.0 * c1 * x - y * c2 * y - 2.0 * c3 * y - c4;
  }
}

::testing::AssertionResult SameNumber(double a, double b) {
  return SameBits(CMatrix(a, 1, 1), CMatrix(b, 1, 1));
}

// Noisy points near a tilted circle, off the origin, with some coordinates
// exactly 0.0 or -0.0, a few coincident points, and the columns permuted
// through the table when permute is set.
CMatrix PointSet(TestRandom &random, int n, bool permute) {
  CMatrix points(3, n);
  for (int i = 0; i < n; ++i) {
    const double angle = random.Uniform(0.0, 6.283185307179586);
    const double radius = 2.0 + 0.05 * random.Normal();
    const double x = radius * std::cos(angle), y = radius * std::sin(angle);
    points(0, i) = 0.8 * x + 0.1 * y + 1.5;
    points(1, i) = -0.3 * x + 0.9 * y - 0.5;
    points(2, i) = 0.5 * x - 0.4 * y + 0.3 + 0.02 * random.Normal() + 0.1 * x * x;
    if (i % 7 == 3) points(i % 3, i) = i % 2 ? -0.0 : 0.0;
  }
  if (n > 5) points.SetCol(Col(points, 1), 4);
  if (permute) {
    points.SwapCols(0, n - 1);
    points.SwapCols(1, n / 2);
  }
  return points;
}

TEST(FitsFast, LineAndPlaneMatchThePlainSteps) {
  TestRandom random(1001);
  for (int n : {2, 3, 7, 50, 3000})
    for (bool permute : {false, true}) {
      const CMatrix points = PointSet(random, n, permute);
      CMatrix c, v, r, plainC, plainV, plainR;
      PlaneFit(points, c, v, r);
      LiteralPlaneFit(points, plainC, plainV, plainR);
      EXPECT_TRUE(SameBits(c, plainC)) << n;
      EXPECT_TRUE(SameBits(v, plainV)) << n;
      EXPECT_TRUE(SameBits(r, plainR)) << n;
      LineFit(points, c, v, r);
      LiteralLineFit(points, plainC, plainV, plainR);
      EXPECT_TRUE(SameBits(c, plainC)) << n;
      EXPECT_TRUE(SameBits(v, plainV)) << n;
      EXPECT_TRUE(SameBits(r, plainR)) << n;
    }
  // Points in the plane z = 0, some of them with -0.0 coordinates: residuals
  // of +0.0 and -0.0 products keep the sign the product gives.
  CMatrix flat = MakeMatrix(3, 5, {1, -2, 0, 3, -0.0, 2, 5, -1, 0, 1, 0, -0.0, 0, -0.0, 0});
  CMatrix c, v, r, plainC, plainV, plainR;
  PlaneFit(flat, c, v, r);
  LiteralPlaneFit(flat, plainC, plainV, plainR);
  EXPECT_TRUE(SameBits(r, plainR));
  EXPECT_TRUE(SameBits(v, plainV));
}

TEST(FitsFast, SphereCircleAndParaboloidMatchThePlainSteps) {
  TestRandom random(2002);
  for (int n : {5, 6, 40, 2500})
    for (bool permute : {false, true}) {
      const CMatrix points = PointSet(random, n, permute);
      CMatrix c, v, r, plainC, plainV, plainR;
      double radius, plainRadius, b, plainB, sign, plainSign;
      SphereFit(points, c, radius, r);
      LiteralSphereFit(points, plainC, plainRadius, plainR);
      EXPECT_TRUE(SameBits(c, plainC)) << n;
      EXPECT_TRUE(SameNumber(radius, plainRadius));
      EXPECT_TRUE(SameBits(r, plainR)) << n;

      CircleFit(points, c, v, radius, r);
      LiteralCircleFit(points, plainC, plainV, plainRadius, plainR);
      EXPECT_TRUE(SameBits(c, plainC)) << n;
      EXPECT_TRUE(SameBits(v, plainV));
      EXPECT_TRUE(SameNumber(radius, plainRadius));
      EXPECT_TRUE(SameBits(r, plainR)) << n;

      ParaboloidFit(points, c, radius, b, sign, r);
      LiteralParaboloidFit(points, plainC, plainRadius, plainB, plainSign, plainR);
      EXPECT_TRUE(SameBits(c, plainC)) << n;
      EXPECT_TRUE(SameNumber(radius, plainRadius));
      EXPECT_TRUE(SameNumber(b, plainB));
      EXPECT_TRUE(SameNumber(sign, plainSign));
      EXPECT_TRUE(SameBits(r, plainR)) << n;
    }
}

TEST(FitsFast, OutputsAreReplacedWhateverTheyHeld) {
  // Outputs that start large, small, permuted or of another shape end up the
  // same as fresh ones.
  TestRandom random(3003);
  const CMatrix points = PointSet(random, 30, false);
  CMatrix fresh[3];
  double radius;
  SphereFit(points, fresh[0], radius, fresh[1]);
  for (int rows : {1, 3, 40}) {
    CMatrix centre = random.Matrix(rows, 5), residuals = random.Matrix(rows, 31);
    if (rows > 1) residuals.SwapCols(0, 1);
    SphereFit(points, centre, radius, residuals);
    EXPECT_TRUE(SameBits(centre, fresh[0]));
    EXPECT_TRUE(SameBits(residuals, fresh[1]));
  }
  PlaneFit(points, fresh[0], fresh[1], fresh[2]);
  CMatrix centroid = random.Matrix(4, 4), normal(2, 1), residuals = random.Matrix(2, 2);
  PlaneFit(points, centroid, normal, residuals);
  EXPECT_TRUE(SameBits(centroid, fresh[0]));
  EXPECT_TRUE(SameBits(residuals, fresh[2]));
}

TEST(FitsFast, PlaneFitNeedsNoHeapOnceOutputsHaveTheirShape) {
  TestRandom random(4004);
  const CMatrix points = PointSet(random, 1000, false);
  CMatrix c, v, r;
  PlaneFit(points, c, v, r);
  AllocationScope scope;
  PlaneFit(points, c, v, r);
  EXPECT_EQ(scope.Count(), 0u);
}

}  // namespace
