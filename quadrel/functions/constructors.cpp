// Pattern constructors.
#include "quadrel/functions/constructors.h"

#include <cmath>

#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/internal/scalar.h"

CMatrix Zeros(int n) {
  return CMatrix(0.0, n, n);
}

CMatrix Zeros(int rows, int cols) {
  return CMatrix(0.0, rows, cols);
}

CMatrix Zeros(const CMatrix &like) {
  return CMatrix(0.0, like.GetRows(), like.GetCols());
}

CMatrix Ones(int n) {
  return CMatrix(1.0, n, n);
}

CMatrix Ones(int rows, int cols) {
  return CMatrix(1.0, rows, cols);
}

CMatrix Ones(const CMatrix &like) {
  return CMatrix(1.0, like.GetRows(), like.GetCols());
}

CMatrix Eye(int n) {
  CMatrix R(0.0, n, n);
  for (int k = 0; k < n; ++k)
    CMatrixAccess::At(R, k, k) = 1.0;
  return R;
}

CMatrix Eye(int rows, int cols) {
  CMatrix R(0.0, rows, cols);
  const int m = MinInt(rows, cols);
  for (int k = 0; k < m; ++k)
    CMatrixAccess::At(R, k, k) = 1.0;
  return R;
}

CMatrix Seq(double start, double stop, double step) {
  // The quotient is taken once, without tolerance: its rounding decides
  // whether stop itself belongs to the sequence.
  const double quotient = (stop - start) / step;
  // A quotient of -1 or lower leaves no element, and a zero step gives an
  // infinite or NaN quotient that has no count at all: all of these are an
  // empty range. The test is written so that NaN takes the empty branch.
  if (!(quotient > -1.0) || std::isinf(quotient)) return CMatrix(0, 1);
  QUADREL_EXPECTS(
      quotient < 2147483646.0,
      QuadrelFormat("%.17g to %.17g in steps of %.17g has too many elements", start, stop, step));
  const int n = static_cast<int>(quotient) + 1;
  CMatrix R(n, 1);
  double *column = CMatrixAccess::Col(R, 0);
  // Every element from its own index: no running sum, so errors do not grow.
  for (int i = 0; i < n; ++i)
    column[i] = i * step + start;
  return R;
}

CMatrix Linspace(double first, double last, int count) {
  if (count <= 0) return CMatrix(0, 1);
  // With one point the step would be a division by zero; like MATLAB, the one
  // value is the end point.
  if (count == 1) return CMatrix(last, 1, 1);
  CMatrix R(count, 1);
  const double step = (last - first) / static_cast<double>(count - 1);
  double *column = CMatrixAccess::Col(R, 0);
  for (int i = 0; i < count; ++i)
    column[i] = i * step + first;
  return R;
}

CMatrix Diag(const CMatrix &A) {
  const int m = MinInt(A.GetRows(), A.GetCols());
  CMatrix R(m, 1);
  double *column = CMatrixAccess::Col(R, 0);
  for (int k = 0; k < m; ++k)
    column[k] = CMatrixAccess::At(A, k, k);
  return R;
}
