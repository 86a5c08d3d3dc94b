#include "quadrel/linalg/least_squares.h"

#include <cstddef>

#include "quadrel/linalg/svd.h"
#include "quadrel/linalg/internal/svd_core.h"
#include "quadrel/linalg/internal/svd_steps.h"
#include "quadrel/linalg/internal/tall_lsq.h"
#include "quadrel/linalg/internal/work_arrays.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/contract.h"

// The result is the one of the plain formulation: Svd(A, U, S, V), the largest
// singular value by Max(Diag(S)), the rank threshold, T = S with its non-zero
// diagonal inverted, P = (V * T) * Transpose(U) and x = P * b. The work is
// done on SvdCore's own arrays, without the matrices U, S, V, Transpose(U) and
// P: every element of V * T and of P is formed as that product forms it (a sum
// from 0.0 in rising order of acc = left * right + acc), and each element of x
// takes acc = P(i, k) * b(k, j) + acc in rising k. P is formed one column at a
// time, as soon as its row of U is known, and goes straight into those sums.
// Tall systems with one right-hand side and few unknowns go to TallLsq, which
// does the same on columns.
double Lsq(const CMatrix &A, const CMatrix &b, CMatrix &x) {
  QUADREL_EXPECTS(b.GetRows() == A.GetRows(),
                  "right-hand side has " + QuadrelDims(b) + ", needs the " +
                      QuadrelFormat("%d", A.GetRows()) + " rows of the system " + QuadrelDims(A));
  const int m = A.GetRows();
  const int n = A.GetCols();
  if (n == 0) {
    // No unknowns: nothing to search and nothing to solve for.
    const double cond = Cond(A);
    x = CMatrix(0.0, 0, b.GetCols());
    return cond;
  }

  if (b.GetCols() == 1 && m >= n && n <= kTallLsqMaxUnknowns) {
    // The usual system of the fits: TallLsq on a copy of the columns, on the
    // stack for a few rows only, as in RowArrays.
    Scratch<double, 64> columns(static_cast<std::size_t>(m) * static_cast<std::size_t>(n), m <= 8);
    double *table[kTallLsqMaxUnknowns];
    for (int j = 0; j < n; ++j) {
      table[j] = columns.Data() + static_cast<std::ptrdiff_t>(j) * m;
      const double *from = CMatrixAccess::Col(A, j);
      for (int k = 0; k < m; ++k)
        table[j][k] = from[k];
    }
    CMatrix R(n, 1);
    const double cond = TallLsq(table, m, n, CMatrixAccess::Col(b, 0), CMatrixAccess::Col(R, 0));
    // The solution goes to x last, when nothing reads A or b any more.
    x = R;
    return cond;
  }

  // Svd works on a wide matrix as if padded with zero rows to n x n; the row
  // count of the padded matrix sets the threshold.
  const int rows = m < n ? n : m;
  RowArrays a(A, rows, n);
  RowArrays v(n, n);
  Scratch<double, 16> w(static_cast<std::size_t>(n));
  const double cond = 1.0 / SvdCore(a.Rows(), rows, n, w.Data(), v.Rows());
  const std::size_t nn = static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
  Scratch<double, 64> vt(nn);
  double **vr = v.Rows();
  InvertedValuesTimesV(
      n, rows, w.Data(), [vr](int i, int k) { return vr[i][k]; },
      [&vt, n](int i, int c) -> double & {
        return vt.Data()[static_cast<std::size_t>(i) * n + c];
      });

  // x = P * b with P(i, k) = sum over c of VT(i, c) * U(k, c); U is the first m
  // rows of a. Column k of P is formed once and goes into every column of x.
  const int cols = b.GetCols();
  CMatrix R(0.0, n, cols);
  double **ur = a.Rows();
  const double *const *bc = CMatrixAccess::Table(b);
  double *const *rc = CMatrixAccess::Table(R);
  Scratch<double, 16> pk(static_cast<std::size_t>(n));
  for (int k = 0; k < m; ++k) {
    const double *u = ur[k];
    for (int i = 0; i < n; ++i) {
      const double *vti = vt.Data() + static_cast<std::size_t>(i) * n;
      double acc = 0.0;
      for (int c = 0; c < n; ++c)
        acc = vti[c] * u[c] + acc;
      pk.Data()[i] = acc;
    }
    for (int j = 0; j < cols; ++j) {
      const double bkj = bc[j][k];
      double *r = rc[j];
      for (int i = 0; i < n; ++i)
        r[i] = pk.Data()[i] * bkj + r[i];
    }
  }
  // The solution goes to x last, when nothing reads A or b any more.
  x = R;
  return cond;
}
