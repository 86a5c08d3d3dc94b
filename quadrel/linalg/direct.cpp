#include "quadrel/linalg/direct.h"

#include <cmath>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/internal/scalar.h"

void Lu(const CMatrix &A, CMatrix &L, CMatrix &U, CMatrix &P) {
  QUADREL_EXPECTS(&L != &U && &L != &P && &U != &P, "L, U and P must be three different matrices");
  const int m = A.GetRows();
  const int n = A.GetCols();
  // The elimination leaves the rows of upper where they are: order(p) is the
  // row that stands at pivot position p, and each multiplier goes to the row of
  // lower it belongs to. The products at the end put both into pivot order.
  CMatrix lower(0.0, m, m);
  CMatrix upper = A;
  CMatrix perm = Eye(m);
  CMatrix order(0.0, m, 1);
  for (int p = 0; p < m; ++p)
    order(p) = p;

  // Only columns that exist are eliminated when there are fewer than m - 1.
  const int steps = MinInt(m - 1, n);
  for (int k = 0; k < steps; ++k) {
    int best = k;
    for (int j = k; j < m; ++j) {
      if (AbsRef(upper(static_cast<int>(order(best)), k)) <
          AbsRef(upper(static_cast<int>(order(j)), k))) {
        best = j;
      }
    }
    if (best != k) {
      order.SwapRows(k, best);
      perm.SwapRows(k, best);
    }
    const int b = static_cast<int>(order(k));
    for (int i = k + 1; i < m; ++i) {
      const int r = static_cast<int>(order(i));
      lower(r, k) = upper(r, k) / upper(b, k);
      // Column k takes part too: it is computed, not set to zero, and may keep a
      // rounding residue.
      for (int j = k; j < n; ++j)
        upper(r, j) = upper(r, j) - lower(r, k) * upper(b, j);
    }
  }
  L = perm * lower + Eye(m);
  U = perm * upper;
  P = perm;
}

void Lu(const CMatrix &A, CMatrix &L, CMatrix &U) {
  QUADREL_EXPECTS(&L != &U, "L and U must be two different matrices");
  CMatrix P;
  Lu(A, L, U, P);
  L = Inv(P) * L;
}

double Det(const CMatrix &A) {
  QUADREL_EXPECTS(A.GetRows() == A.GetCols(), "needs a square matrix, got " + QuadrelDims(A));
  const int size = A.GetRows();
  if (size == 2) return A(0, 0) * A(1, 1) - A(1, 0) * A(0, 1);
  if (size == 1) return A(0, 0);
  if (size == 0) return 1.0;

  // Expand along the row with the most exact zeros; a later row needs strictly
  // more to be taken.
  int row = 0;
  int mostZeros = -1;
  for (int i = 0; i < size; ++i) {
    int zeros = 0;
    for (int j = 0; j < size; ++j) {
      if (A(i, j) == 0.0) ++zeros;
    }
    if (zeros > mostZeros) {
      row = i;
      mostZeros = zeros;
    }
  }
  double sign = std::pow(-1.0, static_cast<double>(row));
  double sum = 0.0;
  for (int j = 0; j < size; ++j) {
    if (A(row, j) != 0.0) sum += Det(Exclude(A, row, j)) * (sign * A(row, j));
    // The sign alternates over every column, also where the element was zero.
    sign = sign >= 0 ? -1.0 : 1.0;
  }
  return sum;
}

CMatrix Inv(CMatrix A) {
  QUADREL_EXPECTS(A.GetRows() == A.GetCols(), "needs a square matrix, got " + QuadrelDims(A));
  const int m = A.GetRows();
  const int n = A.GetCols();
  CMatrix E = Eye(m);
  // Every row operation runs over all columns of A and E alike.
  auto subtractRow = [&](int i, int k, double f) {
    for (int j = 0; j < n; ++j) {
      A(i, j) = A(i, j) - f * A(k, j);
      E(i, j) = E(i, j) - f * E(k, j);
    }
  };

  for (int k = 0; k <= m - 2; ++k) {
    int best = k;
    for (int j = k + 1; j < m; ++j) {
      if (AbsRef(A(best, k)) < AbsRef(A(j, k))) best = j;
    }
    if (best != k) {
      A.SwapRows(k, best);
      E.SwapRows(k, best);
    }
    for (int i = k + 1; i < m; ++i)
      subtractRow(i, k, A(i, k) / A(k, k));
  }
  // Back elimination without further pivoting.
  for (int k = m - 1; k >= 1; --k) {
    for (int i = k - 1; i >= 0; --i)
      subtractRow(i, k, A(i, k) / A(k, k));
  }
  for (int i = 0; i < m; ++i) {
    const double d = A(i, i);
    for (int j = 0; j < n; ++j) {
      A(i, j) = A(i, j) / d;
      E(i, j) = E(i, j) / d;
    }
  }
  return E;
}
