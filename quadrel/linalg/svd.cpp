#include "quadrel/linalg/svd.h"

#include <cstddef>
#include <new>

#include "quadrel/functions/constructors.h"
#include "quadrel/linalg/svd_core.h"
#include "quadrel/matrix/access.h"
#include "quadrel/matrix/contract.h"

namespace {

// Row arrays for SvdCore in two allocations, whatever the row count: one block
// for all elements and one table of row pointers into it. Rows of A come first;
// rows beyond A's row count are zero.
class RowArrays {
 public:
  RowArrays(const CMatrix &A, int rows, int cols)
      : data_(static_cast<double *>(::operator new(sizeof(double) * Count(rows, cols)))),
        table_(nullptr) {
    try {
      table_ = static_cast<double **>(::operator new(sizeof(double *) * Count(rows, 1)));
    } catch (...) {
      ::operator delete(data_);
      throw;
    }
    const int given = A.GetRows();
    for (int i = 0; i < rows; ++i) {
      double *row = data_ + static_cast<std::ptrdiff_t>(i) * cols;
      table_[i] = row;
      for (int j = 0; j < cols; ++j)
        row[j] = i < given ? CMatrixAccess::At(A, i, j) : 0.0;
    }
  }
  ~RowArrays() {
    ::operator delete(table_);
    ::operator delete(data_);
  }
  RowArrays(const RowArrays &) = delete;
  RowArrays &operator=(const RowArrays &) = delete;

  double **Rows() { return table_; }

 private:
  static std::size_t Count(int rows, int cols) {
    return static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
  }

  double *data_;
  double **table_;
};

// A block of doubles freed on every way out.
class Values {
 public:
  explicit Values(int count)
      : data_(static_cast<double *>(
            ::operator new(sizeof(double) * static_cast<std::size_t>(count)))) {}
  ~Values() { ::operator delete(data_); }
  Values(const Values &) = delete;
  Values &operator=(const Values &) = delete;

  double *Data() { return data_; }

 private:
  double *data_;
};

}  // namespace

double Svd(const CMatrix &A, CMatrix &U, CMatrix &S, CMatrix &V) {
  QUADREL_EXPECTS(&S != &A && &V != &A, "S and V must not be the input matrix");
  QUADREL_EXPECTS(&U != &S && &U != &V && &S != &V, "U, S and V must be three different matrices");
  const int m = A.GetRows();
  const int n = A.GetCols();
  // The engine needs at least n rows; a wide matrix gets zero rows added, which
  // changes no singular value and adds only zero rows to U.
  const int rows = m < n ? n : m;

  // v gets A's values as well, although they serve nothing: every element of
  // its leading n x n block is written before it is read.
  RowArrays a(A, rows, n);
  RowArrays v(A, rows, n);
  Values w(n);

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
