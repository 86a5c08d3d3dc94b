// Reductions, statistics and element maps.
#include "quadrel/functions/reductions.h"

#include <cmath>

#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/internal/scalar.h"

namespace {

// Element k of the single row of a 1 x n matrix.
inline const double &InRow(const CMatrix &A, int k) {
  return CMatrixAccess::At(A, 0, k);
}

// Sum and sum of squares of one path, in rising index. Get(k) gives element k.
template <typename Get>
void SumAndSquares(int n, Get get, double &s, double &q) {
  s = 0.0;
  q = 0.0;
  for (int k = 0; k < n; ++k) {
    const double x = get(k);
    s = s + x;
    q = q + x * x;
  }
}

// Position of the element that wins under better(candidate, best), strictly,
// so the first of equal elements stays. Element 0 is read first: the path must
// not be empty.
template <typename Get, typename Better>
int BestOf(int n, Get get, Better better) {
  int best = 0;
  for (int k = 1; k < n; ++k)
    if (better(get(k), get(best))) best = k;
  return best;
}

template <typename Better>
CMatrix Extreme(const CMatrix &A, CMatrix &index, Better better) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  if (rows == 1) {
    const int best = BestOf(
        cols, [&A](int k) { return InRow(A, k); }, better);
    const double value = InRow(A, best);
    index = CMatrix(static_cast<double>(best), 1, 1);
    return CMatrix(value, 1, 1);
  }
  CMatrix R(1, cols);
  index.Resize(1, cols);
  for (int j = 0; j < cols; ++j) {
    const double *column = CMatrixAccess::Col(A, j);
    const int best = BestOf(
        rows, [column](int k) { return column[k]; }, better);
    CMatrixAccess::At(index, 0, j) = static_cast<double>(best);
    CMatrixAccess::At(R, 0, j) = column[best];
  }
  return R;
}

bool HasEmptyPath(const CMatrix &A) {
  return A.GetRows() == 1 ? A.GetCols() == 0 : (A.GetRows() == 0 && A.GetCols() > 0);
}

}  // namespace

CMatrix Sum(const CMatrix &A) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  if (rows == 1) {
    double s = 0.0;
    for (int k = 0; k < cols; ++k)
      s = s + InRow(A, k);
    return CMatrix(s, 1, 1);
  }
  CMatrix R(1, cols);
  for (int j = 0; j < cols; ++j) {
    const double *column = CMatrixAccess::Col(A, j);
    double s = 0.0;
    for (int i = 0; i < rows; ++i)
      s = s + column[i];
    CMatrixAccess::At(R, 0, j) = s;
  }
  return R;
}

CMatrix Mean(const CMatrix &A) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  if (rows == 1) {
    double s = 0.0;
    for (int k = 0; k < cols; ++k)
      s = s + InRow(A, k);
    return CMatrix(s / static_cast<double>(cols), 1, 1);
  }
  CMatrix R(1, cols);
  for (int j = 0; j < cols; ++j) {
    const double *column = CMatrixAccess::Col(A, j);
    double s = 0.0;
    for (int i = 0; i < rows; ++i)
      s = s + column[i];
    CMatrixAccess::At(R, 0, j) = s / static_cast<double>(rows);
  }
  return R;
}

CMatrix Std(const CMatrix &A) {
  CMatrix mean;
  return Std(A, mean);
}

CMatrix Std(const CMatrix &A, CMatrix &mean) {
  QUADREL_EXPECTS(&mean != &A, "mean must be another matrix than A");
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  double s;
  double q;
  if (rows == 1) {
    SumAndSquares(
        cols, [&A](int k) { return InRow(A, k); }, s, q);
    const double n = static_cast<double>(cols);
    const double m = s / n;
    const double v = q / n;
    mean = CMatrix(m, 1, 1);
    return CMatrix(std::sqrt(AbsRef(v - m * m)), 1, 1);
  }
  CMatrix R(1, cols);
  mean.Resize(1, cols);
  const double n = static_cast<double>(rows);
  for (int j = 0; j < cols; ++j) {
    const double *column = CMatrixAccess::Col(A, j);
    SumAndSquares(
        rows, [column](int k) { return column[k]; }, s, q);
    const double m = s / n;
    const double v = q / n;
    CMatrixAccess::At(mean, 0, j) = m;
    CMatrixAccess::At(R, 0, j) = std::sqrt(AbsRef(v - m * m));
  }
  return R;
}

CMatrix Min(const CMatrix &A) {
  CMatrix index;
  return Min(A, index);
}

CMatrix Min(const CMatrix &A, CMatrix &index) {
  QUADREL_EXPECTS(!HasEmptyPath(A), "no element to compare in a " + QuadrelDims(A) + " matrix");
  QUADREL_EXPECTS(&index != &A, "index must be another matrix than A");
  return Extreme(A, index, [](double x, double best) { return x < best; });
}

CMatrix Max(const CMatrix &A) {
  CMatrix index;
  return Max(A, index);
}

CMatrix Max(const CMatrix &A, CMatrix &index) {
  QUADREL_EXPECTS(!HasEmptyPath(A), "no element to compare in a " + QuadrelDims(A) + " matrix");
  QUADREL_EXPECTS(&index != &A, "index must be another matrix than A");
  return Extreme(A, index, [](double x, double best) { return x > best; });
}

CMatrix Abs(const CMatrix &A) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  CMatrix R(rows, cols);
  for (int j = 0; j < cols; ++j) {
    double *target = CMatrixAccess::Col(R, j);
    const double *source = CMatrixAccess::Col(A, j);
    for (int i = 0; i < rows; ++i)
      target[i] = source[i] < 0 ? -source[i] : source[i];
  }
  return R;
}

int Any(const CMatrix &A) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      if (CMatrixAccess::At(A, i, j) != 0.0) return 1;
  return 0;
}

int All(const CMatrix &A) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      if (CMatrixAccess::At(A, i, j) == 0.0) return 0;
  return 1;
}

int Find(const CMatrix &A, CMatrix &index) {
  QUADREL_EXPECTS(&index != &A, "index must be another matrix than A");
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  int count = 0;
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      if (CMatrixAccess::At(A, i, j) != 0.0) ++count;
  if (count == 0) return 0;
  index.Resize(count, 1);
  double *target = CMatrixAccess::Col(index, 0);
  int next = 0;
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      if (CMatrixAccess::At(A, i, j) != 0.0) target[next++] = static_cast<double>(i * cols + j);
  return count;
}

CMatrix Eval(CMatrix A, double (*f)(double)) {
  QUADREL_EXPECTS(f != nullptr, "the function to apply is null");
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  // Row by row: f may count or log its calls, so the order is part of the
  // promise.
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) {
      double &x = CMatrixAccess::At(A, i, j);
      x = f(x);
    }
  return A;
}
