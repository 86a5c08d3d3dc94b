// Working storage of the decompositions: small on the stack, large on the heap.
#ifndef QUADREL_LINALG_WORK_ARRAYS_H
#define QUADREL_LINALG_WORK_ARRAYS_H

#include <cstddef>
#include <new>

#include "quadrel/matrix/internal/access.h"

// count values of type T, on the stack when at most kLocal are needed (and
// the caller allows it), on the heap otherwise; freed on every way out. The
// values start unset.
template <class T, std::size_t kLocal>
class Scratch {
 public:
  explicit Scratch(std::size_t count, bool local = true)
      : data_(local && count <= kLocal ? local_
                                       : static_cast<T *>(::operator new(sizeof(T) * count))) {}
  ~Scratch() {
    if (data_ != local_) ::operator delete(data_);
  }
  Scratch(const Scratch &) = delete;
  Scratch &operator=(const Scratch &) = delete;

  T *Data() { return data_; }

 private:
  T local_[kLocal];
  T *data_;
};

// Row arrays as SvdCore takes them: one block for all elements and a table of
// row pointers into it. Both stay on the stack for a few rows only (so a 3 x 3
// decomposition needs no heap at all), and every longer matrix makes the same
// two allocations, whatever its row count. With a source A, its rows come
// first and rows beyond its row count are zero; without one the elements are
// left unset.
class RowArrays {
 public:
  RowArrays(int rows, int cols)
      : data_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), rows <= kLocalRows),
        table_(static_cast<std::size_t>(rows)) {
    double **table = table_.Data();
    for (int i = 0; i < rows; ++i)
      table[i] = data_.Data() + static_cast<std::ptrdiff_t>(i) * cols;
  }
  RowArrays(const CMatrix &A, int rows, int cols) : RowArrays(rows, cols) {
    const int given = A.GetRows();
    const double *const *column = CMatrixAccess::Table(A);
    double **table = table_.Data();
    for (int i = 0; i < rows; ++i)
      for (int j = 0; j < cols; ++j)
        table[i][j] = i < given ? column[j][i] : 0.0;
  }

  double **Rows() { return table_.Data(); }

 private:
  static constexpr int kLocalRows = 8;
  static constexpr std::size_t kLocalData = 64;
  Scratch<double, kLocalData> data_;
  Scratch<double *, kLocalRows> table_;
};

#endif  // QUADREL_LINALG_WORK_ARRAYS_H
