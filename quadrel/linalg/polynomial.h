// Polynomial fit and evaluation.
//
// Coefficient vectors hold the constant term first: p(j) is the coefficient of
// x to the power j. Polyfit solves its Vandermonde system with Lsq; Polyval
// sums the powers term by term.
//
// A NaN in x or y makes every coefficient of Polyfit NaN (through Lsq), an
// infinite y gives infinite or NaN coefficients. Polyval carries NaN and
// infinities by IEEE rules; pow(x, 0) is 1 also for NaN and infinite x, so a
// constant polynomial stays finite there.
#ifndef QUADREL_LINALG_POLYNOMIAL_H
#define QUADREL_LINALG_POLYNOMIAL_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Least-squares polynomial of the given degree (>= 0) through the N points
// (x(i), y(i)), N = x.GetLength(). x is a vector of either orientation; y is a
// column of N rows, or N x k for k fits on the same x. Returns (degree + 1) x k
// coefficients, constant first. With fewer points than coefficients
// (N < degree + 1) the result is the minimum-norm solution of the
// under-determined system, as Lsq gives it.
QUADREL_API CMatrix Polyfit(const CMatrix &x, const CMatrix &y, int degree);

// The polynomial with coefficients p (a vector of either orientation, constant
// first, as Polyfit gives them) at every element of x, which may have any
// shape; the result has the shape of x. An empty p gives zeros.
QUADREL_API CMatrix Polyval(const CMatrix &p, const CMatrix &x);

#endif  // QUADREL_LINALG_POLYNOMIAL_H
