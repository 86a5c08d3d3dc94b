// The singular value decomposition and the least-squares solver written out in
// their plainest form, for tests only.
//
// Every step is one loop per column as the algorithm states it, every rotation
// is applied to the whole matrix where it arises, and nothing is fused, queued,
// kept in registers or taken from the library's own engine. The fast routes of
// the library (SvdCore, Svd, Cond, Lsq, TallLsq) must give exactly these bits.
// Only the matrix layer is used, so every test program can link this file.
#ifndef QUADREL_TESTING_SVD_REFERENCE_H
#define QUADREL_TESTING_SVD_REFERENCE_H

#include "quadrel/matrix/matrix.h"

// The engine on row arrays, as SvdCore takes them: a holds m rows of n doubles
// (m >= n) and becomes U, w[0..n-1] receives the singular values unsorted, the
// first n rows and columns of v receive V (v needs n rows of n doubles, its
// contents do not matter). Returns the smallest singular value over the
// largest, with the start values 1e25 and 1e-25.
double ReferenceSvdCore(double **a, int m, int n, double *w, double **v);

// Svd(A, U, S, V) through ReferenceSvdCore on row arrays from GetBuffer2D. A of
// fewer rows than columns is factored padded with zero rows, and U is the first
// m rows of that factor, as the library does. Returns 1 / ReferenceSvdCore.
double ReferenceSvd(const CMatrix &A, CMatrix &U, CMatrix &S, CMatrix &V);

// Lsq(A, b, x) as the explicit pseudo-inverse: ReferenceSvd, the largest
// singular value, the rank threshold rows * largest * 2^-52 (rows: m, or n when
// A is wide), T = S with its kept values inverted, P = (V * T) * U' and
// x = P * b, each product a literal one. A without columns gives x of 0 rows.
// Returns ReferenceSvd's value.
double ReferenceLsq(const CMatrix &A, const CMatrix &b, CMatrix &x);

#endif  // QUADREL_TESTING_SVD_REFERENCE_H
