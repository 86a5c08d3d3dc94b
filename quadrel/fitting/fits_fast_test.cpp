// The fits form their sums straight from the points, without the centred copy,
// the transposes and the stored turned points of the plain formulation. These
// tests hold them to that formulation, written out with public functions only,
// bit for bit.
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/fitting/paraboloid.h"
#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/geometry/distances.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/matrix/internal/scalar.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/test_util.h"

namespace {

// The outputs of a fit: its matrices in their order, then its numbers as 1 x 1.
using Outputs = std::vector<CMatrix>;

CMatrix Number(double value) {
  return CMatrix(value, 1, 1);
}

// Row k of the points as an n x 1 column.
CMatrix Coordinate(const CMatrix &points, int k) {
  return Transpose(Row(points, k));
}

// The centroid, the centred points C, the scatter C * C' and its Svd, and the
// column of V whose quadratic form is the greatest (line) or least (plane).
CMatrix PlainAxis(const CMatrix &points, bool line, CMatrix &centroid, CMatrix &C) {
  centroid = Transpose(Mean(Transpose(points)));
  C = points;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < C.GetCols(); ++j)
      C(i, j) = C(i, j) - centroid(i);
  const CMatrix S = C * Transpose(C);
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
  return Col(V, best);
}

Outputs PlainLine(const CMatrix &points) {
  CMatrix centroid, C, residuals(points.GetCols(), 1);
  const CMatrix direction = PlainAxis(points, true, centroid, C);
  for (int i = 0; i < points.GetCols(); ++i)
    residuals(i) = LinePointDist(centroid, direction, Col(points, i));
  return {centroid, direction, residuals};
}

Outputs PlainPlane(const CMatrix &points) {
  CMatrix centroid, C;
  const CMatrix normal = PlainAxis(points, false, centroid, C);
  return {centroid, normal, Transpose(C) * normal};
}

Outputs PlainSphere(const CMatrix &points) {
  const int n = points.GetCols();
  const CMatrix X = Coordinate(points, 0), Y = Coordinate(points, 1), Z = Coordinate(points, 2);
  CMatrix a, residuals(1, n);
  Lsq(ColCat(ColCat(ColCat(Ones(n, 1), 2.0 * X), 2.0 * Y), 2.0 * Z), (X ^ X) + (Y ^ Y) + (Z ^ Z),
      a);
  const double radius = std::sqrt(AbsRef(a(0) + a(1) * a(1) + a(2) * a(2) + a(3) * a(3)));
  const CMatrix centre = ExcludeRow(a, 0);
  for (int i = 0; i < n; ++i)
    residuals(i) = Norm2(Col(points, i) - centre) - radius;
  return {centre, residuals, Number(radius)};
}

// The plane fit, the points turned by the rotation of its normal, a circle
// fitted to their x and y, and each point's distance from that circle.
Outputs PlainCircle(const CMatrix &points) {
  const int n = points.GetCols();
  const Outputs plane = PlainPlane(points);
  CMatrix residuals = plane[2], a;
  const CMatrix t = Cart2Sph(plane[1]);
  const CMatrix R = Rotation(t(1), t(2)), Q = R * points;
  const CMatrix X = Coordinate(Q, 0), Y = Coordinate(Q, 1);
  Lsq(ColCat(ColCat(Ones(n, 1), 2.0 * X), 2.0 * Y), (X ^ X) + (Y ^ Y), a);
  const double radius = std::sqrt(AbsRef(a(0) + a(1) * a(1) + a(2) * a(2)));
  const CMatrix c = MakeCol({a(1), a(2), Mean(Row(Q, 2))(0)});
  for (int i = 0; i < n; ++i) {
    const double p = residuals(i), d = Norm2(Col(Q, i) - c);
    const double e = radius - std::sqrt(d * d - p * p);
    residuals(i) = std::sqrt(p * p + e * e);
  }
  return {Transpose(R) * c, plane[1], residuals, Number(radius)};
}

Outputs PlainParaboloid(const CMatrix &points) {
  const int n = points.GetCols();
  const CMatrix X = Coordinate(points, 0), Y = Coordinate(points, 1), Z = Coordinate(points, 2);
  CMatrix c;
  Lsq(ColCat(ColCat(ColCat(ColCat(X ^ X, 2.0 * X), Y ^ Y), 2.0 * Y), Ones(n, 1)), Z, c);
  const double c0 = c(0), c1 = c(1), c2 = c(2), c3 = c(3), c4 = c(4);
  const CMatrix vertex = MakeCol({-c1 / c0, -c3 / c2, (c4 - c1 * c1 / c0) - c3 * c3 / c2});
  const CMatrix residuals =
      Z - ((X * c0) ^ X) - (2.0 * c1) * X - ((Y * c2) ^ Y) - (2.0 * c3) * Y - c4;
  return {vertex, Transpose(residuals), Number(std::sqrt(1.0 / AbsRef(c0))),
          Number(std::sqrt(1.0 / AbsRef(c2))), Number(c0 < 0.0 ? -1.0 : 1.0)};
}

// The library's fits by name: matrix outputs into o (three matrices of any
// shape, whose contents must not matter), numbers into x.
void Fast(const std::string &name, const CMatrix &p, Outputs &o, double *x) {
  if (name == "line") LineFit(p, o[0], o[1], o[2]);
  if (name == "plane") PlaneFit(p, o[0], o[1], o[2]);
  if (name == "circle") CircleFit(p, o[0], o[1], x[0], o[2]);
  if (name == "sphere") SphereFit(p, o[0], x[0], o[1]);
  if (name == "paraboloid") ParaboloidFit(p, o[0], x[0], x[1], x[2], o[1]);
}

// Each fit with the fewest points it takes, its count of matrix outputs and its
// plain steps.
const struct {
  const char *name;
  int fewest;
  std::size_t matrices;
  Outputs (*plain)(const CMatrix &);
} kFits[] = {{"line", 2, 3, PlainLine},
             {"plane", 3, 3, PlainPlane},
             {"circle", 3, 3, PlainCircle},
             {"sphere", 4, 2, PlainSphere},
             {"paraboloid", 5, 2, PlainParaboloid}};

// Noisy points near a tilted, bent circle off the origin, with some coordinates
// exactly 0.0 or -0.0, a repeated point, and the columns permuted through the
// table when permute is set.
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
  if (permute) points.SwapCols(0, n - 1);
  if (permute) points.SwapCols(1, n / 2);
  return points;
}

TEST(FitsFast, EveryFitMatchesItsPlainSteps) {
  TestRandom random(1001);
  // Last, points in the plane z = 0 with -0.0 among them, where a sum that did
  // not start from 0.0 would give residuals of -0.0.
  std::vector<CMatrix> sets = {
      MakeMatrix(3, 5, {1, -2, 0, 3, -0.0, 2, 5, -1, 0, 1, 0, -0.0, 0, -0.0, 0})};
  for (int n : {2, 3, 5, 6, 7, 40, 2500})
    for (bool permute : {false, true})
      sets.insert(sets.begin(), PointSet(random, n, permute));
  int round = 0;
  for (const CMatrix &points : sets)
    for (const auto &fit : kFits) {
      if (points.GetCols() < fit.fewest) continue;
      // Outputs that start large, small, permuted or of another shape.
      const int rows = 1 + 19 * (round++ % 3);
      Outputs o = {random.Matrix(rows, 5), random.Matrix(rows, 31), random.Matrix(2, rows)};
      if (rows > 1) o[1].SwapCols(0, 1);
      double x[3];
      Fast(fit.name, points, o, x);
      const Outputs plain = fit.plain(points);
      for (std::size_t k = 0; k < plain.size(); ++k)
        EXPECT_TRUE(SameBits(k < fit.matrices ? o[k] : Number(x[k - fit.matrices]), plain[k]))
            << fit.name << " output " << k << " on " << points.GetCols() << " points";
    }
}

}  // namespace
