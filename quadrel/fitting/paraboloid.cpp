// Paraboloid fit in vertex form.
#include "quadrel/fitting/paraboloid.h"

#include <cmath>

#include "quadrel/fitting/internal/sign_ref.h"
#include "quadrel/linalg/internal/tall_lsq.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/prefetch.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/internal/scalar.h"

void ParaboloidFit(const CMatrix &points, CMatrix &vertex, double &a, double &b, double &sign,
                   CMatrix &residuals) {
  QUADREL_EXPECTS(points.GetRows() == 3,
                  "points is " + QuadrelDims(points) + "; a point set has 3 rows");
  QUADREL_EXPECTS(points.GetCols() >= 5,
                  QuadrelFormat("a paraboloid needs at least 5 points, got %d", points.GetCols()));
  QUADREL_EXPECTS(&vertex != &points && &residuals != &points, "an output is the points object");

  // The design matrix D, rows (x*x, 2x, y*y, 2y, 1), and the right-hand side z,
  // as columns that TallLsq may work on in place; it gives what Lsq(D, z, c)
  // gives.
  const int n = points.GetCols();
  TallColumns D(n, 6);
  double *d[5];
  for (int j = 0; j < 5; ++j)
    d[j] = D[j];
  double *rhs = D[5];
  const double *const *p = CMatrixAccess::Table(points);
  for (int i = 0; i < n; ++i) {
    AheadPoints(p, i, n, {d[0], d[1], d[2], d[3], d[4], rhs});
    const double *point = p[i];
    const double x = point[0];
    const double y = point[1];
    d[0][i] = x * x;
    d[1][i] = 2.0 * x;
    d[2][i] = y * y;
    d[3][i] = 2.0 * y;
    d[4][i] = 1.0;
    rhs[i] = point[2];
  }

  double c[5];
  TallLsq(D.Table(), n, 5, rhs, c);
  const double c0 = c[0];
  const double c1 = c[1];
  const double c2 = c[2];
  const double c3 = c[3];
  const double c4 = c[4];

  // A zero curvature is divided by all the same: a or b becomes infinite.
  a = std::sqrt(1.0 / AbsRef(c0));
  b = std::sqrt(1.0 / AbsRef(c2));
  sign = SignRef(c0);

  CMatrixAccess::Reshape(vertex, 3, 1);
  vertex(0) = -c1 / c0;
  vertex(1) = -c3 / c2;
  vertex(2) = (c4 - c1 * c1 / c0) - c3 * c3 / c2;

  // Reshape leaves the identity column table: element i is Data()[i].
  CMatrixAccess::Reshape(residuals, 1, n);
  double *residual = CMatrixAccess::Data(residuals);
  for (int i = 0; i < n; ++i) {
    AheadPoints(p, i, n, {residual});
    const double *point = p[i];
    const double x = point[0];
    const double y = point[1];
    const double zi = point[2];
    residual[i] = zi - x * c0 * x - 2.0 * c1 * x - y * c2 * y - 2.0 * c3 * y - c4;
  }
}
