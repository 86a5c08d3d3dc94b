// Arithmetic, comparison and logic operators on CMatrix.
#include "quadrel/matrix/operators.h"

#include "quadrel/matrix/access.h"
#include "quadrel/matrix/contract.h"

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

// R(i, j) = f(A(i, j)) with A's shape, rows outer, columns inner.
template <class F>
CMatrix MapElements(const CMatrix &A, F f) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  CMatrix R(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      CMatrixAccess::At(R, i, j) = f(CMatrixAccess::At(A, i, j));
  return R;
}

// R(i, j) = f(A(i, j), B(i, j)) with A's shape; B is at least as large.
template <class F>
CMatrix CombineElements(const CMatrix &A, const CMatrix &B, F f) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  CMatrix R(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      CMatrixAccess::At(R, i, j) = f(CMatrixAccess::At(A, i, j), CMatrixAccess::At(B, i, j));
  return R;
}

// A(i, j) = f(A(i, j)) where the element stands.
template <class F>
void UpdateElements(CMatrix &A, F f) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) {
      double &a = CMatrixAccess::At(A, i, j);
      a = f(a);
    }
}

// A(i, j) = f(A(i, j), B(i, j)) where the element stands. Each element of B is
// read just before the element of A at the same place is written, so B may be
// A itself.
template <class F>
void UpdateElements(CMatrix &A, const CMatrix &B, F f) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) {
      double &a = CMatrixAccess::At(A, i, j);
      a = f(a, CMatrixAccess::At(B, i, j));
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
  const int inner = A.GetCols();
  const int cols = B.GetCols();
  CMatrix R(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) {
      // One running sum in rising k, the product added to it: no blocking and
      // no reordering, so every compiler gives the same bits.
      double acc = 0.0;
      for (int k = 0; k < inner; ++k)
        acc = CMatrixAccess::At(A, i, k) * CMatrixAccess::At(B, k, j) + acc;
      CMatrixAccess::At(R, i, j) = acc;
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
