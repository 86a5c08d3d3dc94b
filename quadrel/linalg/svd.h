// Singular value decomposition and condition number.
//
// Svd factors an m x n matrix as A = U S V' by Householder bidiagonalisation
// followed by implicitly shifted QR sweeps (the Golub-Kahan-Reinsch method), in
// double precision. The singular values are NOT sorted: they stand in S in the
// order in which the sweeps finish them, and no column of U or V is moved. A
// caller that needs the largest or smallest value searches the diagonal of S.
// No report is made when a value does not converge within 30 sweeps.
#ifndef QUADREL_LINALG_SVD_H
#define QUADREL_LINALG_SVD_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Factors A (m x n) into U (m x n, the thin form), S (n x n, diagonal) and V
// (n x n, orthogonal) with A = U S V' up to rounding. Returns the largest over
// the smallest singular value, both searched by magnitude beside the start
// values 1e-25 and 1e25: so 1e-30 I gives about 1e5, an exact zero value
// +infinity, no columns about 1e-50. With m < n, A is factored as if padded with
// zero rows to n x n and U is the first m rows of that factor. Non-finite input
// returns in order with NaN in the factors it reaches; the returned value looks
// only at values that are not NaN. U may be A; S and V must not be A, and the
// three outputs must be different matrices.
QUADREL_API double Svd(const CMatrix &A, CMatrix &U, CMatrix &S, CMatrix &V);

// Exactly the value that Svd returns for A, bit for bit, without the factors.
// Takes any shape that Svd takes, also fewer rows than columns.
QUADREL_API double Cond(const CMatrix &A);

#endif  // QUADREL_LINALG_SVD_H
