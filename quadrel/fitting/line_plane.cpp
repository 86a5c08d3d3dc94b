// Line and plane fits through the scatter matrix of the centred points.
#include "quadrel/fitting/line_plane.h"

#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/geometry/distances.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/matrix/access.h"
#include "quadrel/matrix/contract.h"
#include "quadrel/matrix/operators.h"

namespace {

// The smallest positive normal double and the largest double: start values of
// the searches for the greatest and the least quadratic form.
constexpr double kSmallestNormal = 2.2250738585072014e-308;
constexpr double kLargest = 1.7976931348623157e+308;

// Centres the points on their centroid and decomposes the scatter matrix.
// centroid gets the mean point, Ct the centred points one per row (n x 3), S the
// scatter matrix and V the right singular vectors of S.
void CentredScatter(const CMatrix &points, CMatrix &centroid, CMatrix &Ct, CMatrix &S, CMatrix &V) {
  CMatrix C(points);
  // Mean of the n x 3 transpose: one mean per coordinate, as a 1 x 3 row.
  centroid = Transpose(Mean(Transpose(C)));
  const int n = C.GetCols();
  for (int i = 0; i < 3; ++i) {
    const double c = centroid(i);
    for (int j = 0; j < n; ++j)
      CMatrixAccess::At(C, i, j) = CMatrixAccess::At(C, i, j) - c;
  }
  Ct = Transpose(C);
  S = C * Ct;
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

  CMatrix Ct;
  CMatrix S;
  CMatrix V;
  CentredScatter(points, centroid, Ct, S, V);

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
  residuals.Resize(n, 1);
  for (int i = 0; i < n; ++i)
    residuals(i) = LinePointDist(centroid, direction, Col(points, i));
}

void PlaneFit(const CMatrix &points, CMatrix &centroid, CMatrix &normal, CMatrix &residuals) {
  QUADREL_EXPECTS(points.GetRows() == 3,
                  "points is " + QuadrelDims(points) + "; a point set has 3 rows");
  QUADREL_EXPECTS(points.GetCols() >= 2,
                  QuadrelFormat("a plane needs at least 2 points, got %d", points.GetCols()));
  QUADREL_EXPECTS(&centroid != &points && &normal != &points && &residuals != &points,
                  "an output is the points object");

  CMatrix Ct;
  CMatrix S;
  CMatrix V;
  CentredScatter(points, centroid, Ct, S, V);

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

  normal = Col(V, best);
  residuals = Ct * normal;
}
