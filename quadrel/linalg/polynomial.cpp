#include "quadrel/linalg/polynomial.h"

#include <cmath>

#include "quadrel/linalg/least_squares.h"
#include "quadrel/matrix/internal/contract.h"

namespace {

// True if the matrix is a vector (or empty or 1 x 1): it holds exactly
// GetLength elements, which its linear index reaches.
bool IsVector(const CMatrix &m) {
  return m.GetRows() * m.GetCols() == m.GetLength();
}

}  // namespace

CMatrix Polyfit(const CMatrix &x, const CMatrix &y, int degree) {
  QUADREL_EXPECTS(degree >= 0, QuadrelFormat("degree %d is negative", degree));
  QUADREL_EXPECTS(IsVector(x), "abscissae must be a vector, got " + QuadrelDims(x));
  QUADREL_EXPECTS(y.GetRows() == x.GetLength(), "ordinates are " + QuadrelDims(y) +
                                                    ", need one row per abscissa (" +
                                                    QuadrelFormat("%d", x.GetLength()) + ")");
  const int count = x.GetLength();
  CMatrix D(count, degree + 1);
  // pow for every power, the zeroth included, so column 0 is all ones.
  for (int i = 0; i < count; ++i) {
    for (int j = 0; j <= degree; ++j)
      D(i, j) = std::pow(x(i), static_cast<double>(j));
  }
  CMatrix c;
  Lsq(D, y, c);
  return c;
}

CMatrix Polyval(const CMatrix &p, const CMatrix &x) {
  QUADREL_EXPECTS(IsVector(p), "coefficients must be a vector, got " + QuadrelDims(p));
  const int terms = p.GetLength();
  const int rows = x.GetRows();
  const int cols = x.GetCols();
  CMatrix R(rows, cols);
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < cols; ++j) {
      const double at = x(i, j);
      double t = 0.0;
      for (int k = 0; k < terms; ++k)
        t += std::pow(at, static_cast<double>(k)) * p(k);
      R(i, j) = t;
    }
  }
  return R;
}
