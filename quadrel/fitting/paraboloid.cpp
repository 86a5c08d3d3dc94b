// Paraboloid fit in vertex form.
#include "quadrel/fitting/paraboloid.h"

#include <cmath>

#include "quadrel/fitting/sign_ref.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/matrix/access.h"
#include "quadrel/matrix/contract.h"
#include "quadrel/matrix/scalar.h"

void ParaboloidFit(const CMatrix &points, CMatrix &vertex, double &a, double &b, double &sign,
                   CMatrix &residuals) {
  QUADREL_EXPECTS(points.GetRows() == 3,
                  "points is " + QuadrelDims(points) + "; a point set has 3 rows");
  QUADREL_EXPECTS(points.GetCols() >= 5,
                  QuadrelFormat("a paraboloid needs at least 5 points, got %d", points.GetCols()));
  QUADREL_EXPECTS(&vertex != &points && &residuals != &points, "an output is the points object");

  const int n = points.GetCols();
  CMatrix D(n, 5);
  CMatrix z(n, 1);
  for (int i = 0; i < n; ++i) {
    const double x = CMatrixAccess::At(points, 0, i);
    const double y = CMatrixAccess::At(points, 1, i);
    CMatrixAccess::At(D, i, 0) = x * x;
    CMatrixAccess::At(D, i, 1) = 2.0 * x;
    CMatrixAccess::At(D, i, 2) = y * y;
    CMatrixAccess::At(D, i, 3) = 2.0 * y;
    CMatrixAccess::At(D, i, 4) = 1.0;
    CMatrixAccess::At(z, i, 0) = CMatrixAccess::At(points, 2, i);
  }

  CMatrix c;
  Lsq(D, z, c);
  const double c0 = c(0);
  const double c1 = c(1);
  const double c2 = c(2);
  const double c3 = c(3);
  const double c4 = c(4);

  // A zero curvature is divided by all the same: a or b becomes infinite.
  a = std::sqrt(1.0 / AbsRef(c0));
  b = std::sqrt(1.0 / AbsRef(c2));
  sign = SignRef(c0);

  vertex.Resize(3, 1);
  vertex(0) = -c1 / c0;
  vertex(1) = -c3 / c2;
  vertex(2) = (c4 - c1 * c1 / c0) - c3 * c3 / c2;

  residuals.Resize(1, n);
  for (int i = 0; i < n; ++i) {
    const double x = CMatrixAccess::At(points, 0, i);
    const double y = CMatrixAccess::At(points, 1, i);
    const double zi = CMatrixAccess::At(points, 2, i);
    residuals(i) = zi - x * c0 * x - 2.0 * c1 * x - y * c2 * y - 2.0 * c3 * y - c4;
  }
}
