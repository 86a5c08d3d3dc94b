#include "quadrel/linalg/svd.h"

#include <cstddef>

#include "quadrel/functions/constructors.h"
#include "quadrel/linalg/internal/svd_core.h"
#include "quadrel/linalg/internal/work_arrays.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/contract.h"

double Svd(const CMatrix &A, CMatrix &U, CMatrix &S, CMatrix &V) {
  QUADREL_EXPECTS(&S != &A && &V != &A, "S and V must not be the input matrix");
  QUADREL_EXPECTS(&U != &S && &U != &V && &S != &V, "U, S and V must be three different matrices");
  const int m = A.GetRows();
  const int n = A.GetCols();
  // The engine needs at least n rows; a wide matrix gets zero rows added, which
  // changes no singular value and adds only zero rows to U.
  const int rows = m < n ? n : m;

  // v needs only its leading n x n block, and every element of it is written
  // before it is read, so it starts unset.
  RowArrays a(A, rows, n);
  RowArrays v(n, n);
  Scratch<double, 8> w(static_cast<std::size_t>(n));

  const double r = SvdCore(a.Rows(), rows, n, w.Data(), v.Rows());

  S = Eye(n);
  for (int i = 0; i < n; ++i)
    S(i, i) = w.Data()[i];
  V = CMatrix(v.Rows(), n, n);
  // U last, so that U may be the input itself.
  U = CMatrix(a.Rows(), m, n);
  return 1.0 / r;
}

double Cond(const CMatrix &A) {
  CMatrix U;
  CMatrix S;
  CMatrix V;
  return Svd(A, U, S, V);
}
