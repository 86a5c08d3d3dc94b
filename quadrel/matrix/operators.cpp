// Arithmetic, comparison and logic operators on CMatrix.
#include "quadrel/matrix/operators.h"

#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/double_pair.h"
#include "quadrel/matrix/internal/contract.h"

namespace {

// True if B has at least A's rows and at least A's columns.
bool Covers(const CMatrix &B, const CMatrix &A) {
  return B.GetRows() >= A.GetRows() && B.GetCols() >= A.GetCols();
}

std::string SmallerOperand(const CMatrix &A, const CMatrix &B) {
  return "right operand is " + QuadrelDims(B) + ", smaller than the left operand's " +
         QuadrelDims(A);
}

std::string ShortProductOperand(const CMatrix &A, const CMatrix &B) {
  return QuadrelFormat("right operand has %d rows, fewer than the left operand's %d columns",
                       B.GetRows(), A.GetCols());
}

// The element-wise forms compute every element from the elements at the same
// place alone, so the order in which the elements are visited changes no bit.
// They walk down the columns, through the column tables, which follows the
// storage.

// R(i, j) = f(A(i, j)) with A's shape.
template <class F>
CMatrix MapElements(const CMatrix &A, F f) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  CMatrix R(rows, cols);
  for (int j = 0; j < cols; ++j) {
    const double *a = CMatrixAccess::Col(A, j);
    double *r = CMatrixAccess::Col(R, j);
    for (int i = 0; i < rows; ++i)
      r[i] = f(a[i]);
  }
  return R;
}

// R(i, j) = f(A(i, j), B(i, j)) with A's shape; B is at least as large.
template <class F>
CMatrix CombineElements(const CMatrix &A, const CMatrix &B, F f) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  CMatrix R(rows, cols);
  for (int j = 0; j < cols; ++j) {
    const double *a = CMatrixAccess::Col(A, j);
    const double *b = CMatrixAccess::Col(B, j);
    double *r = CMatrixAccess::Col(R, j);
    for (int i = 0; i < rows; ++i)
      r[i] = f(a[i], b[i]);
  }
  return R;
}

// A(i, j) = f(A(i, j)) where the element stands.
template <class F>
void UpdateElements(CMatrix &A, F f) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  for (int j = 0; j < cols; ++j) {
    double *a = CMatrixAccess::Col(A, j);
    for (int i = 0; i < rows; ++i)
      a[i] = f(a[i]);
  }
}

// A(i, j) = f(A(i, j), B(i, j)) where the element stands. Each element of B is
// read just before the element of A at the same place is written, so B may be
// A itself.
template <class F>
void UpdateElements(CMatrix &A, const CMatrix &B, F f) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  for (int j = 0; j < cols; ++j) {
    double *a = CMatrixAccess::Col(A, j);
    const double *b = CMatrixAccess::Col(B, j);
    for (int i = 0; i < rows; ++i)
      a[i] = f(a[i], b[i]);
  }
}

// Columns j0 .. j0 + kCols - 1 of R = A * B. Every element keeps its own
// running sum, which starts at 0.0 and takes acc = A(i, k) * B(k, j) + acc in
// rising k: the same operations in the same order as one dot product per
// element, only many elements advance together. Rows go in blocks of four, two
// pairs, and a tail of single rows.
template <int kCols>
void ProductColumns(const CMatrix &A, const CMatrix &B, CMatrix &R, int j0) {
  const int rows = A.GetRows();
  const int inner = A.GetCols();
  const double *const *a = CMatrixAccess::Table(A);
  const double *b[kCols];
  double *r[kCols];
  for (int t = 0; t < kCols; ++t) {
    b[t] = CMatrixAccess::Col(B, j0 + t);
    r[t] = CMatrixAccess::Col(R, j0 + t);
  }
  int i0 = 0;
  for (; i0 + 4 <= rows; i0 += 4) {
    DoublePair lo[kCols];
    DoublePair hi[kCols];
    for (int t = 0; t < kCols; ++t) {
      lo[t] = SplatPair(0.0);
      hi[t] = SplatPair(0.0);
    }
    for (int k = 0; k < inner; ++k) {
      const DoublePair x = LoadPair(a[k] + i0);
      const DoublePair y = LoadPair(a[k] + i0 + 2);
      for (int t = 0; t < kCols; ++t) {
        const DoublePair s = SplatPair(b[t][k]);
        lo[t] = x * s + lo[t];
        hi[t] = y * s + hi[t];
      }
    }
    for (int t = 0; t < kCols; ++t) {
      StorePair(r[t] + i0, lo[t]);
      StorePair(r[t] + i0 + 2, hi[t]);
    }
  }
  for (; i0 < rows; ++i0) {
    double acc[kCols];
    for (int t = 0; t < kCols; ++t)
      acc[t] = 0.0;
    for (int k = 0; k < inner; ++k) {
      const double x = a[k][i0];
      for (int t = 0; t < kCols; ++t)
        acc[t] = x * b[t][k] + acc[t];
    }
    for (int t = 0; t < kCols; ++t)
      r[t][i0] = acc[t];
  }
}

double Mask(bool holds) {
  return holds ? 1.0 : 0.0;
}

}  // namespace

CMatrix operator+(const CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(Covers(B, A), SmallerOperand(A, B));
  return CombineElements(A, B, [](double a, double b) { return a + b; });
}

CMatrix operator-(const CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(Covers(B, A), SmallerOperand(A, B));
  return CombineElements(A, B, [](double a, double b) { return a - b; });
}

CMatrix operator^(const CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(Covers(B, A), SmallerOperand(A, B));
  return CombineElements(A, B, [](double a, double b) { return a * b; });
}

CMatrix operator*(const CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(B.GetRows() >= A.GetCols(), ShortProductOperand(A, B));
  const int rows = A.GetRows();
  const int cols = B.GetCols();
  CMatrix R(rows, cols);
  // One running sum per element in rising k, the product added to it: no
  // blocking of the sum and no reordering, so every compiler gives the same
  // bits. Only the elements are grouped, four columns at a time.
  if (rows < 4) {
    // Too few rows for the kernel's blocks: one element after the other.
    const int inner = A.GetCols();
    const double *const *a = CMatrixAccess::Table(A);
    for (int i = 0; i < rows; ++i)
      for (int jj = 0; jj < cols; ++jj) {
        const double *b = CMatrixAccess::Col(B, jj);
        double acc = 0.0;
        for (int k = 0; k < inner; ++k)
          acc = a[k][i] * b[k] + acc;
        CMatrixAccess::At(R, i, jj) = acc;
      }
    return R;
  }
  int j = 0;
  for (; j + 4 <= cols; j += 4)
    ProductColumns<4>(A, B, R, j);
  switch (cols - j) {
    case 3:
      ProductColumns<3>(A, B, R, j);
      break;
    case 2:
      ProductColumns<2>(A, B, R, j);
      break;
    case 1:
      ProductColumns<1>(A, B, R, j);
      break;
    default:
      break;
  }
  return R;
}

CMatrix operator+(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return s + a; });
}

CMatrix operator+(double s, const CMatrix &A) {
  return MapElements(A, [s](double a) { return s + a; });
}

CMatrix operator-(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return a - s; });
}

CMatrix operator-(double s, const CMatrix &A) {
  return MapElements(A, [s](double a) { return s - a; });
}

CMatrix operator*(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return s * a; });
}

CMatrix operator*(double s, const CMatrix &A) {
  return MapElements(A, [s](double a) { return s * a; });
}

CMatrix operator/(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return a / s; });
}

const CMatrix &operator+(const CMatrix &A) {
  return A;
}

CMatrix operator-(const CMatrix &A) {
  return MapElements(A, [](double a) { return -a; });
}

const CMatrix &operator+=(CMatrix &A, double s) {
  UpdateElements(A, [s](double a) { return a + s; });
  return A;
}

const CMatrix &operator+=(CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(Covers(B, A), SmallerOperand(A, B));
  UpdateElements(A, B, [](double a, double b) { return a + b; });
  return A;
}

const CMatrix &operator-=(CMatrix &A, double s) {
  UpdateElements(A, [s](double a) { return a - s; });
  return A;
}

const CMatrix &operator-=(CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(Covers(B, A), SmallerOperand(A, B));
  UpdateElements(A, B, [](double a, double b) { return a - b; });
  return A;
}

const CMatrix &operator*=(CMatrix &A, double s) {
  UpdateElements(A, [s](double a) { return s * a; });
  return A;
}

const CMatrix &operator/=(CMatrix &A, double s) {
  UpdateElements(A, [s](double a) { return a / s; });
  return A;
}

const CMatrix &operator*=(CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(B.GetRows() >= A.GetCols(), ShortProductOperand(A, B));
  A = A * B;
  return A;
}

CMatrix operator==(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return Mask(a == s); });
}

CMatrix operator!=(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return Mask(a != s); });
}

CMatrix operator<(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return Mask(a < s); });
}

CMatrix operator<=(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return Mask(a <= s); });
}

CMatrix operator>(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return Mask(a > s); });
}

CMatrix operator>=(const CMatrix &A, double s) {
  return MapElements(A, [s](double a) { return Mask(a >= s); });
}

CMatrix operator&&(const CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(Covers(B, A), SmallerOperand(A, B));
  return CombineElements(A, B, [](double a, double b) { return Mask(a != 0.0 && b != 0.0); });
}

CMatrix operator||(const CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(Covers(B, A), SmallerOperand(A, B));
  return CombineElements(A, B, [](double a, double b) { return Mask(a != 0.0 || b != 0.0); });
}
