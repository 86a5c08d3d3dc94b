// Free operators on CMatrix: arithmetic, comparison and element-wise logic.
//
// Three things to keep in mind. operator* between two matrices is the true
// matrix product, and operator^ is the element-wise product, not a power.
// Comparisons and logic give masks of 1.0 and 0.0 with the left operand's
// shape, not truth values. No operator tests a shape, broadcasts, or takes a
// 1 x 1 matrix for a scalar: the left operand sets the loop bounds and the
// right one must be at least as large (checked builds stop otherwise).
//
// Every value form walks its result row by row (i outer, j inner) and returns
// a fresh matrix with the identity column table. Operands are read through
// element access, so a column order left by SwapCols is respected.
//
// NaN and infinities travel through the arithmetic by IEEE rules: an element of
// a result is NaN where its operands hold a NaN or meet as inf - inf or 0 * inf,
// and in a product every element whose row of A or column of B holds a NaN is
// NaN. Masks are always 1.0 or 0.0, never NaN.
#ifndef QUADREL_MATRIX_OPERATORS_H
#define QUADREL_MATRIX_OPERATORS_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// A + B, A - B and the element-wise product A ^ B, all with A's shape:
// R(i, j) = A(i, j) op B(i, j). B must have at least A's rows and at least A's
// columns; what lies beyond is ignored.
QUADREL_API CMatrix operator+(const CMatrix &A, const CMatrix &B);
QUADREL_API CMatrix operator-(const CMatrix &A, const CMatrix &B);
QUADREL_API CMatrix operator^(const CMatrix &A, const CMatrix &B);

// The matrix product, A.rows x B.cols. Each element is summed in one running
// double from 0.0 in rising k: acc = A(i, k) * B(k, j) + acc. B must have at
// least A.cols rows; rows beyond are ignored. A with no columns gives zeros.
QUADREL_API CMatrix operator*(const CMatrix &A, const CMatrix &B);

// Arithmetic with a scalar, with A's shape: s + A(i, j) for both sums (the
// scalar comes first either way), A(i, j) - s, s - A(i, j), s * A(i, j) for both
// products, and A(i, j) / s. A zero divisor is not tested: the elements take the
// infinity or NaN that the division gives.
QUADREL_API CMatrix operator+(const CMatrix &A, double s);
QUADREL_API CMatrix operator+(double s, const CMatrix &A);
QUADREL_API CMatrix operator-(const CMatrix &A, double s);
QUADREL_API CMatrix operator-(double s, const CMatrix &A);
QUADREL_API CMatrix operator*(const CMatrix &A, double s);
QUADREL_API CMatrix operator*(double s, const CMatrix &A);
QUADREL_API CMatrix operator/(const CMatrix &A, double s);

// Unary plus returns A itself, by reference: no copy. Unary minus gives a new
// matrix of -A(i, j).
QUADREL_API const CMatrix &operator+(const CMatrix &A);
QUADREL_API CMatrix operator-(const CMatrix &A);

// In-place forms: each element changes where it stands, with no temporary, so
// A += A and A -= A are well defined. A keeps its shape. The element becomes
// A(i, j) + s, A(i, j) + B(i, j), A(i, j) - s, A(i, j) - B(i, j), s * A(i, j) or
// A(i, j) / s. A matrix B must be at least as large as A in both dimensions.
QUADREL_API const CMatrix &operator+=(CMatrix &A, double s);
QUADREL_API const CMatrix &operator+=(CMatrix &A, const CMatrix &B);
QUADREL_API const CMatrix &operator-=(CMatrix &A, double s);
QUADREL_API const CMatrix &operator-=(CMatrix &A, const CMatrix &B);
QUADREL_API const CMatrix &operator*=(CMatrix &A, double s);
QUADREL_API const CMatrix &operator/=(CMatrix &A, double s);
// A becomes the product A * B through a temporary and assignment, so it takes
// the shape A.rows x B.cols. B must have at least A.cols rows.
QUADREL_API const CMatrix &operator*=(CMatrix &A, const CMatrix &B);

// Comparison of every element with a scalar: a mask of A's shape, 1.0 where the
// relation holds exactly and 0.0 elsewhere. NaN follows IEEE rules: a NaN
// element, or a NaN s, gives 0.0 under every relation but !=, where it gives
// 1.0.
QUADREL_API CMatrix operator==(const CMatrix &A, double s);
QUADREL_API CMatrix operator!=(const CMatrix &A, double s);
QUADREL_API CMatrix operator<(const CMatrix &A, double s);
QUADREL_API CMatrix operator<=(const CMatrix &A, double s);
QUADREL_API CMatrix operator>(const CMatrix &A, double s);
QUADREL_API CMatrix operator>=(const CMatrix &A, double s);

// Element-wise logic: a mask of A's shape. An element counts as true when it
// differs from 0.0, so -0.0 is false and NaN is true. Both operands are always
// read (no short circuit). B must be at least as large as A.
QUADREL_API CMatrix operator&&(const CMatrix &A, const CMatrix &B);
QUADREL_API CMatrix operator||(const CMatrix &A, const CMatrix &B);

#endif  // QUADREL_MATRIX_OPERATORS_H
