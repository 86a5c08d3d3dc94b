// Linear least squares through the singular value decomposition.
//
// Lsq is the library's one solver for systems of linear equations: it forms
// the pseudo-inverse of the system matrix from Svd, with a rank decision on the
// singular values, and applies it to the right-hand side. Rank-deficient and
// singular systems are ordinary input; they give the minimum-norm solution.
//
// A NaN or an infinity in A spoils the decomposition and makes all of x NaN; a
// NaN in column j of b makes column j of x NaN, and an infinity there gives
// infinite elements (NaN where opposite infinities meet). The call returns
// with x of the usual shape either way.
#ifndef QUADREL_LINALG_LEAST_SQUARES_H
#define QUADREL_LINALG_LEAST_SQUARES_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Minimum-norm least-squares solution x (n x k) of A x = b for A of m x n and b
// of m x k; column j of x solves for column j of b. Singular values below
// rows * largest * 2^-52 are treated as 0 (strictly below: one equal to the
// threshold stays), where rows is m, or n for a wide matrix (m < n), which is
// solved as A padded with zero rows to n x n: the minimum-norm solution of the
// under-determined system. Returns Svd's condition number of A, which counts
// every singular value, also the dropped ones. b must have exactly m rows. x may
// be A or b itself.
QUADREL_API double Lsq(const CMatrix &A, const CMatrix &b, CMatrix &x);

#endif  // QUADREL_LINALG_LEAST_SQUARES_H
