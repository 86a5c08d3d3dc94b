#include "quadrel/linalg/least_squares.h"

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/matrix/contract.h"
#include "quadrel/matrix/operators.h"

double Lsq(const CMatrix &A, const CMatrix &b, CMatrix &x) {
  QUADREL_EXPECTS(b.GetRows() == A.GetRows(),
                  "right-hand side has " + QuadrelDims(b) + ", needs the " +
                      QuadrelFormat("%d", A.GetRows()) + " rows of the system " + QuadrelDims(A));
  const int m = A.GetRows();
  const int n = A.GetCols();

  CMatrix U;
  CMatrix S;
  CMatrix V;
  const double cond = Svd(A, U, S, V);
  if (n == 0) {
    // No unknowns: nothing to search and nothing to solve for.
    x = CMatrix(0.0, 0, b.GetCols());
    return cond;
  }

  // The singular values are unsorted, so the largest is searched for.
  const double largest = Max(Diag(S))(0);
  // Svd works on a wide matrix as if padded with zero rows to n x n, so that
  // row count sets the threshold then.
  const double rows = static_cast<double>(m < n ? n : m);
  const double tol = rows * largest * 2.220446049250313e-16;
  for (int i = 0; i < n; ++i) {
    if (S(i, i) < tol) S(i, i) = 0.0;
  }
  // Dropped and zero values stay 0 in the inverse.
  CMatrix T = S;
  for (int i = 0; i < n; ++i) {
    if (T(i, i) != 0.0) T(i, i) = 1.0 / T(i, i);
  }
  const CMatrix P = (V * T) * Transpose(U);
  x = P * b;
  return cond;
}
