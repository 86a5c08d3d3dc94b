// The engine of the singular value decomposition and its scalar helpers.
//
// SvdCore works on plain row arrays rather than CMatrix, so that the adapter Svd
// (svd.h) decides how the working copies are laid out. These functions are
// internal: the library uses them, callers reach them only through Svd and Cond.
#ifndef QUADREL_LINALG_SVD_CORE_H
#define QUADREL_LINALG_SVD_CORE_H

// Factors the m x n matrix held in the row arrays a (a[i][j] is element (i, j))
// into U S V' by Householder bidiagonalisation and implicitly shifted QR sweeps.
// On return a holds U (m x n), w[0..n-1] the singular values, unsorted and in the
// order the sweeps leave them, and the first n rows and columns of v hold V.
// v needs at least n rows of at least n doubles; its contents on entry do not
// matter. The rows of a must number at least n as well (pad with zero rows).
// Returns the smallest singular value over the largest, both found by magnitude
// among the start values 1e25 (smallest) and 1e-25 (largest); each value gets
// at most 30 sweeps and a value that has not converged is left as it stands.
// A sweep rotation whose two inputs are both exactly zero is taken as the
// identity (cs = 1, sn = 0) instead of dividing 0 by 0; no other rotation is
// affected.
// Non-finite input still ends in order, with NaN spread through a, w and v as
// far as it reaches; NaN values never become the smallest or largest.
double SvdCore(double **a, int m, int n, double *w, double **v);

// sqrt(a^2 + b^2) without overflow or underflow on the way: the smaller
// magnitude is divided by the larger one. Gives 0.0 when both are 0.
double StableHypot(double a, double b);

// |a| with the sign of b: |a| if b >= 0 (so also for b = -0.0), else -|a|.
double TransferSign(double a, double b);

// a if a > b, else b.
double MaxDouble(double a, double b);

#endif  // QUADREL_LINALG_SVD_CORE_H
