#include "quadrel/linalg/svd.h"

#include <cstddef>
#include <new>

#include "quadrel/functions/constructors.h"
#include "quadrel/linalg/svd_core.h"
#include "quadrel/matrix/access.h"
#include "quadrel/matrix/contract.h"

namespace {

// Row arrays for SvdCore: one block for all elements and one table of row
// pointers into it, kept on the stack when small enough (so a 3 x 3
// decomposition needs no heap at all) and otherwise two allocations, whatever
// the row count. With a source, its rows come first and rows beyond its row
// count are zero; without one the elements are left unset.
class RowArrays {
 public:
  RowArrays(int rows, int cols) { Allocate(rows, cols); }
  RowArrays(const CMatrix &A, int rows, int cols) {
    Allocate(rows, cols);
    const int given = A.GetRows();
    const double *const *column = CMatrixAccess::Table(A);
    for (int i = 0; i < rows; ++i)
      for (int j = 0; j < cols; ++j)
        table_[i][j] = i < given ? column[j][i] : 0.0;
  }
  ~RowArrays() {
    if (table_ != localTable_) ::operator delete(table_);
    if (data_ != localData_) ::operator delete(data_);
  }
  RowArrays(const RowArrays &) = delete;
  RowArrays &operator=(const RowArrays &) = delete;

  double **Rows() { return table_; }

 private:
  static constexpr int kLocalRows = 8;
  static constexpr int kLocalData = 64;

  void Allocate(int rows, int cols) {
    const std::size_t count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
    data_ = localData_;
    table_ = localTable_;
    // Local storage only for a few rows, so that every longer matrix makes the
    // same two allocations.
    if (rows > kLocalRows || count > kLocalData)
      data_ = static_cast<double *>(::operator new(sizeof(double) * count));
    if (rows > kLocalRows) {
      try {
        table_ = static_cast<double **>(
            ::operator new(sizeof(double *) * static_cast<std::size_t>(rows)));
      } catch (...) {
        if (data_ != localData_) ::operator delete(data_);
        throw;
      }
    }
    for (int i = 0; i < rows; ++i)
      table_[i] = data_ + static_cast<std::ptrdiff_t>(i) * cols;
  }

  double *data_;
  double **table_;
  double localData_[kLocalData];
  double *localTable_[kLocalRows];
};

// A block of doubles, on the stack when small; freed on every way out.
class Values {
 public:
  explicit Values(int count)
      : data_(count <= kLocal ? local_
                              : static_cast<double *>(::operator new(
                                    sizeof(double) * static_cast<std::size_t>(count)))) {}
  ~Values() {
    if (data_ != local_) ::operator delete(data_);
  }
  Values(const Values &) = delete;
  Values &operator=(const Values &) = delete;

  double *Data() { return data_; }

 private:
  static constexpr int kLocal = 8;
  double local_[kLocal];
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

  // v needs only its leading n x n block, and every element of it is written
  // before it is read, so it starts unset.
  RowArrays a(A, rows, n);
  RowArrays v(n, n);
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
