// The engine of the singular value decomposition and its scalar helpers.
//
// One algorithm, Householder bidiagonalisation, accumulation of both factors
// and shifted QR sweeps, reaches callers by three routes, which give the same
// bits:
// - SvdCore (svd_core.cpp) on row arrays. Each Householder pass and each pass
//   of the left-hand accumulation is one walk down the rows; the rotations of
//   the diagonalisation wait in a queue and go over a in blocks of rows. Svd
//   (svd.cpp) calls it, and Cond through Svd; the working arrays stay on the
//   stack for small matrices (work_arrays.h), so a 3 x 3 Svd needs no heap.
// - Lsq (least_squares.cpp), for several right-hand sides, more than
//   kTallLsqMaxUnknowns unknowns or a wide system: SvdCore on its own row
//   arrays, then the pseudo-inverse one column at a time, straight into x.
// - TallLsq (tall_lsq.cpp), for m >= n, n <= kTallLsqMaxUnknowns and one
//   right-hand side: Lsq's route for such systems and the one the circle,
//   sphere and paraboloid fits call on their own columns. It works on columns,
//   never stores U and applies the rotations in the last pass.
// The steps on the small n x n part (the right-hand accumulation, the
// diagonalisation, the extremes, the pseudo-inverse's middle) are shared, in
// svd_steps.h. The tests hold every route to a literal engine written loop by
// loop (quadrel/testing/svd_reference.h).
//
// These functions are internal: the library uses them, callers reach them only
// through Svd, Cond and Lsq.
#ifndef QUADREL_LINALG_SVD_CORE_H
#define QUADREL_LINALG_SVD_CORE_H

#include <cmath>

// Every singular value gets at most this many QR sweeps. After the last one
// the diagonalisation goes on to the next value whether or not this one has
// converged, without a report.
constexpr int kSvdMaxSweeps = 30;

// The one convergence test of the diagonalisation: t counts as zero beside the
// bound B on the norm of the bidiagonal form when adding it to B changes
// nothing. There is no machine epsilon in it. A NaN on either side counts as
// negligible too (neither < nor > holds), so the split search always ends at
// the first value at the latest, whose superdiagonal entry is kept at 0, even
// when B itself has become NaN.
inline bool Negligible(double t, double B) {
  const double sum = std::fabs(t) + B;
  return !(sum < B) && !(sum > B);
}

// Factors the m x n matrix held in the row arrays a (a[i][j] is element (i, j))
// into U S V' by Householder bidiagonalisation and implicitly shifted QR sweeps.
// On return a holds U (m x n), w[0..n-1] the singular values, unsorted and in the
// order the sweeps leave them, and the first n rows and columns of v hold V.
// v needs at least n rows of at least n doubles; its contents on entry do not
// matter. The rows of a must number at least n as well (pad with zero rows).
// Returns the smallest singular value over the largest, both found by magnitude
// among the start values 1e25 (smallest) and 1e-25 (largest); each value gets
// at most kSvdMaxSweeps sweeps and a value that has not converged is left as it
// stands.
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
