// Direct methods for small dense matrices: LU factorisation with partial
// pivoting, the determinant by cofactor expansion, and the Gauss-Jordan inverse.
//
// The three share no code. None reports anything: a zero pivot is divided by,
// so a singular matrix gives infinities or NaN in Lu and Inv and a determinant
// of 0 or near it.
//
// NaN and infinities travel through the arithmetic and come out as NaN: a NaN
// element makes Det NaN and every element of Inv NaN, and spreads through the
// columns of L and U it reaches; an infinite pivot turns its column of U NaN
// (inf - inf, 0 * inf). Every call returns with the shapes of finite input,
// and P stays a permutation matrix.
#ifndef QUADREL_LINALG_DIRECT_H
#define QUADREL_LINALG_DIRECT_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Factors A (m x n) as P A = L U with partial pivoting: L (m x m) unit lower
// triangular, U (m x n) upper triangular up to rounding residues under the
// diagonal, P (m x m) a permutation matrix. Among pivots of equal magnitude the
// upper row wins. A column of zeros from the pivot down gives NaN. With fewer
// than m - 1 columns only the existing columns are eliminated, so P A = L U
// still holds with U zero below its diagonal. L, U and P must be three
// different matrices; any of them may be A itself.
QUADREL_API void Lu(const CMatrix &A, CMatrix &L, CMatrix &U, CMatrix &P);

// As above, with L replaced by Inv(P) L, so that A = L U directly and L is a
// row permutation of a unit lower triangular matrix. L and U must differ.
QUADREL_API void Lu(const CMatrix &A, CMatrix &L, CMatrix &U);

// The determinant of the square matrix A, by cofactor expansion along the row
// with the most exact zeros (the first of equals), down to 2 x 2 minors. Cost
// grows factorially with the size, less with zeros. A 1 x 1 matrix gives its
// element and a 0 x 0 matrix 1.0, the empty product.
QUADREL_API double Det(const CMatrix &A);

// The inverse of the square matrix A by Gauss-Jordan elimination with partial
// pivoting on a copy of A (the caller's matrix is not touched). A singular
// matrix gives infinite or NaN elements.
QUADREL_API CMatrix Inv(CMatrix A);

#endif  // QUADREL_LINALG_DIRECT_H
