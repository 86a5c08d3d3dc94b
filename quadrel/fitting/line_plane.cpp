// Line and plane fits through the scatter matrix of the centred points.
#include "quadrel/fitting/line_plane.h"

#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/distances.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/contract.h"

namespace {

// The smallest positive normal double and the largest double: start values of
// the searches for the greatest and the least quadratic form.
constexpr double kSmallestNormal = 2.2250738585072014e-308;
constexpr double kLargest = 1.7976931348623157e+308;

// Centroid and scatter matrix of the points, and the right singular vectors of
// the scatter matrix. The plain formulation copies the points, centres the
// copy, transposes it and multiplies; here every sum is formed straight from
// the points, with the same operations in the same order:
// - the centroid is Mean of the n x 3 transpose: each coordinate summed over
//   the points in rising index from 0.0, then divided by n;
// - S = C * C' with C the centred points: S(a, b) takes acc = C(a, k) * C(b, k)
//   + acc in rising k from 0.0, where C(a, k) = point k's coordinate a minus
//   centroid a. S(b, a) multiplies the same two numbers the other way round,
//   which gives the same product, so S comes out symmetric bit for bit and is
//   filled from its six distinct sums.
void CentredScatter(const CMatrix &points, CMatrix &centroid, CMatrix &S, CMatrix &V) {
  const int n = points.GetCols();
  const double *const *p = CMatrixAccess::Table(points);
  double s0 = 0.0;
  double s1 = 0.0;
  double s2 = 0.0;
  for (int k = 0; k < n; ++k) {
    s0 = s0 + p[k][0];
    s1 = s1 + p[k][1];
    s2 = s2 + p[k][2];
  }
  const double count = static_cast<double>(n);
  const double c0 = s0 / count;
  const double c1 = s1 / count;
  const double c2 = s2 / count;
  CMatrixAccess::Reshape(centroid, 3, 1);
  centroid(0) = c0;
  centroid(1) = c1;
  centroid(2) = c2;

  double s00 = 0.0, s01 = 0.0, s02 = 0.0, s11 = 0.0, s12 = 0.0, s22 = 0.0;
  for (int k = 0; k < n; ++k) {
    const double d0 = p[k][0] - c0;
    const double d1 = p[k][1] - c1;
    const double d2 = p[k][2] - c2;
    s00 = d0 * d0 + s00;
    s01 = d0 * d1 + s01;
    s02 = d0 * d2 + s02;
    s11 = d1 * d1 + s11;
    s12 = d1 * d2 + s12;
    s22 = d2 * d2 + s22;
  }
  CMatrixAccess::Reshape(S, 3, 3);
  S(0, 0) = s00;
  S(0, 1) = s01;
  S(0, 2) = s02;
  S(1, 0) = s01;
  S(1, 1) = s11;
  S(1, 2) = s12;
  S(2, 0) = s02;
  S(2, 1) = s12;
  S(2, 2) = s22;
  CMatrix U;
  CMatrix W;
  Svd(S, U, W, V);
}

// The quadratic form u' S u of column j of V, from the six distinct elements of
// the symmetric S: the sum of the squared projections of the centred points on
// that column.
double ScatterAlong(const CMatrix &S, const CMatrix &V, int j) {
  const double u0 = V(0, j);
  const double u1 = V(1, j);
  const double u2 = V(2, j);
  return u0 * u0 * S(0, 0) + u1 * u1 * S(1, 1) + u2 * u2 * S(2, 2) +
         2.0 * (u0 * u1 * S(0, 1) + u0 * u2 * S(0, 2) + u1 * u2 * S(1, 2));
}

}  // namespace

void LineFit(const CMatrix &points, CMatrix &centroid, CMatrix &direction, CMatrix &residuals) {
  QUADREL_EXPECTS(points.GetRows() == 3,
                  "points is " + QuadrelDims(points) + "; a point set has 3 rows");
  QUADREL_EXPECTS(points.GetCols() >= 2,
                  QuadrelFormat("a line needs at least 2 points, got %d", points.GetCols()));
  QUADREL_EXPECTS(&centroid != &points && &direction != &points && &residuals != &points,
                  "an output is the points object");

  CMatrix S;
  CMatrix V;
  CentredScatter(points, centroid, S, V);

  // The strict test keeps the lowest-numbered of equal columns.
  int best = -1;
  double bestValue = kSmallestNormal;
  for (int j = 0; j < 3; ++j) {
    const double q = ScatterAlong(S, V, j);
    if (q > bestValue) {
      best = j;
      bestValue = q;
    }
  }

  const int n = points.GetCols();
  if (best < 0) {
    // All points coincide (or differ by less than any scatter a double can
    // show): every direction fits equally, so a fixed one is given and the
    // points lie on the line.
    direction = CMatrix(0.0, 3, 1);
    direction(0) = 1.0;
    residuals = CMatrix(0.0, n, 1);
    return;
  }

  direction = Col(V, best);
  CMatrixAccess::Reshape(residuals, n, 1);
  double *r = CMatrixAccess::Col(residuals, 0);
  for (int i = 0; i < n; ++i)
    r[i] = LinePointDist(centroid, direction, Col(points, i));
}

void PlaneFit(const CMatrix &points, CMatrix &centroid, CMatrix &normal, CMatrix &residuals) {
  QUADREL_EXPECTS(points.GetRows() == 3,
                  "points is " + QuadrelDims(points) + "; a point set has 3 rows");
  QUADREL_EXPECTS(points.GetCols() >= 2,
                  QuadrelFormat("a plane needs at least 2 points, got %d", points.GetCols()));
  QUADREL_EXPECTS(&centroid != &points && &normal != &points && &residuals != &points,
                  "an output is the points object");

  CMatrix S;
  CMatrix V;
  CentredScatter(points, centroid, S, V);

  // The strict test keeps the lowest-numbered of equal columns, so coincident
  // points (every q 0) take column 0.
  int best = -1;
  double bestValue = kLargest;
  for (int j = 0; j < 3; ++j) {
    const double q = ScatterAlong(S, V, j);
    if (q < bestValue) {
      best = j;
      bestValue = q;
    }
  }

  // Only scores that are no numbers (non-finite or overflowing points) leave no
  // column chosen; column 0 then serves, as it does for coincident points.
  if (best < 0) best = 0;
  normal = Col(V, best);

  // residuals = C' * normal with C the centred points: element i takes
  // acc = C(k, i) * normal(k) + acc for k = 0, 1, 2 from 0.0. The first step
  // keeps its "+ 0.0", which turns a -0.0 product into +0.0 as the product
  // does.
  const double n0 = normal(0);
  const double n1 = normal(1);
  const double n2 = normal(2);
  const double c0 = centroid(0);
  const double c1 = centroid(1);
  const double c2 = centroid(2);
  const int n = points.GetCols();
  const double *const *p = CMatrixAccess::Table(points);
  CMatrixAccess::Reshape(residuals, n, 1);
  double *r = CMatrixAccess::Col(residuals, 0);
  for (int i = 0; i < n; ++i) {
    double acc = (p[i][0] - c0) * n0 + 0.0;
    acc = (p[i][1] - c1) * n1 + acc;
    acc = (p[i][2] - c2) * n2 + acc;
    r[i] = acc;
  }
}
