// Conversion between numpy arrays and CMatrix for the extension module.
//
// The extension takes float64 arrays only (the Python layer converts other
// real dtypes and checks shapes first) but any strides and either order. An
// array of shape (r, c) becomes an r x c matrix; the Python layer passes the
// transposed view points.T to turn (n, 3) points into the library's 3 x n
// point set without a copy of its own.
#ifndef QUADREL_PYTHON_CONVERT_H
#define QUADREL_PYTHON_CONVERT_H

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <utility>
#include <vector>

#include <quadrel/matrix/matrix.h>

namespace quadrel_python {

namespace py = pybind11;

// A float64 array as it comes from Python: no conversion on the way in, so a
// wrong dtype is a TypeError from pybind11 rather than a silent copy.
using Array = py::array_t<double, 0>;

// A CMatrix whose columns the binding reads and writes directly through the
// column table, the fastest way in and out of a large point set. It is passed
// to the library as the CMatrix it is.
class Matrix : public CMatrix {
 public:
  Matrix() = default;
  Matrix(int rows, int cols) : CMatrix(rows, cols) {}
  explicit Matrix(const CMatrix &source) : CMatrix(source) {}

  double *Column(int j) { return m_ppCol[j]; }
  const double *Column(int j) const { return m_ppCol[j]; }
  // True when the columns lie one after the other in one block, as they do in a
  // fresh matrix: column j starts rows * j elements after column 0.
  bool Contiguous() const;
  // Gives up the data block of a matrix on the heap whose columns are
  // contiguous from its start: the caller owns the rows * cols doubles and
  // frees them with operator delete, and this matrix becomes 0 x 0. Gives
  // nullptr, and changes nothing, for any other matrix.
  double *Detach();
};

// Where the elements of a 2-D float64 array lie: read with the GIL held, used
// after it is released (the caller keeps the array alive).
struct Source {
  const double *data = nullptr;
  int rows = 0;
  int cols = 0;
  std::ptrdiff_t rowStride = 0;  // in elements
  std::ptrdiff_t colStride = 0;
};

// Takes the layout of a; throws ValueError unless a is 2-D with a shape that a
// CMatrix can have (the Python layer checks this first, with better words).
Source Describe(const Array &a);

// The elements of source as a CMatrix for the library to read. A source in
// Fortran order (the view points.T of C-ordered (n, 3) points) with more than 9
// elements is borrowed, not copied: the matrix points into the caller's array,
// which must outlive it and not change while the library reads it. Anything
// else is copied. Needs no GIL.
class InputMatrix : public CMatrix {
 public:
  explicit InputMatrix(const Source &source);
  ~InputMatrix();
  InputMatrix(const InputMatrix &) = delete;
  InputMatrix &operator=(const InputMatrix &) = delete;

 private:
  bool borrowed_ = false;
};

// An output of a fit whose values the library writes straight into a fresh
// numpy array of rows x cols: the matrix is made that shape over the array's
// block, and the library's rule of assignment (storage is reused when the new
// value has no more elements than the matrix holds) keeps it there. Small
// shapes (9 elements or fewer) stay an ordinary matrix. Construct and read
// with the GIL held; the library call itself needs none.
class OutputMatrix : public CMatrix {
 public:
  OutputMatrix(int rows, int cols);
  ~OutputMatrix();
  OutputMatrix(const OutputMatrix &) = delete;
  OutputMatrix &operator=(const OutputMatrix &) = delete;
  // The values as a (rows, cols) array; the matrix must hold rows x cols.
  py::array Take();

 private:
  py::array array_;
  double **table_ = nullptr;
};

// A (rows, cols) float64 array of the elements of m, in Fortran order. A large
// contiguous matrix hands its block over to the array (m becomes 0 x 0); a
// smaller or scattered one is copied. Needs the GIL.
py::array ToArray(Matrix &m);
py::array ToArray(Matrix &&m);

// Runs work with the GIL released and gives back its result.
template <class Work>
auto WithoutGil(Work &&work) {
  py::gil_scoped_release release;
  return std::forward<Work>(work)();
}

}  // namespace quadrel_python

#endif  // QUADREL_PYTHON_CONVERT_H
