// CMatrix: the one value type of quadrel.
//
// A dense matrix of doubles with value semantics: every matrix owns its
// elements, a copy is always deep, and no two matrices share storage. Elements
// are stored by columns and reached through a column table, so that SwapCols
// can exchange two columns in constant time. Matrices of up to 9 elements keep
// their storage inside the object and never touch the heap.
//
// Indices count from 0; element (i, j) is row i, column j. A single index k
// addresses row k / cols, column k % cols: it runs along the rows, although
// storage runs down the columns. GetLength is the larger of rows and cols, the
// length of a vector of either orientation, not the element count.
//
// No member tests an index or a shape in a release build: a caller who breaks
// a stated requirement gets an undefined result. A checked build
// (QUADREL_CHECKED) stops with a message instead.
//
// Elements may be NaN or infinite: storage, copies, assignment, edits and
// selection move them bit for bit like any other value. An index number that is
// NaN lies outside every matrix.
#ifndef QUADREL_MATRIX_MATRIX_H
#define QUADREL_MATRIX_MATRIX_H

#include "quadrel/export.h"

class QUADREL_API CMatrix {
 public:
  // A 1 x 1 matrix whose element has no defined value.
  CMatrix();
  // A rows x cols matrix whose elements have no defined value. rows and cols
  // must not be negative, their product must fit an int, and a matrix with no
  // rows must not have more than 9 columns.
  CMatrix(int rows, int cols);
  // A rows x cols matrix with every element equal to value.
  CMatrix(double value, int rows, int cols);
  // A rows x cols matrix read row by row from a flat array: element (i, j) is
  // values[i * cols + j]. The array must hold rows * cols doubles; it stays the
  // caller's.
  CMatrix(const double *values, int rows, int cols);
  // A rows x cols matrix from row arrays: element (i, j) is rowArrays[i][j], the
  // layout that GetBuffer2D gives. The arrays stay the caller's.
  CMatrix(const double *const *rowArrays, int rows, int cols);
  // A deep copy, with the source's column order as well.
  CMatrix(const CMatrix &source);
  ~CMatrix();

  // Assignment: the matrix takes the source's shape, whatever its own was, and
  // reuses its storage when the source has no more elements than it has.
  CMatrix &operator=(const CMatrix &source);

  // Element at linear index k: row k / cols, column k % cols. Requires cols >= 1
  // and 0 <= k < rows * cols.
  double &operator()(int k);
  const double &operator()(int k) const;
  // Element (i, j). Requires 0 <= i < rows and 0 <= j < cols. A reference holds
  // until the matrix is assigned to, resized, transposed or destroyed.
  double &operator()(int i, int j);
  const double &operator()(int i, int j) const;

  int GetRows() const;
  int GetCols() const;
  // The larger of rows and cols.
  int GetLength() const;

  // A fresh row-oriented copy: a table of rows pointers, each to its own block
  // of cols doubles, result[i][j] = element (i, j). The caller owns all of it and
  // frees it with operator delete, every row first, then the table.
  double **GetBuffer2D() const;

  // Selection by index matrices. An index number is a double truncated towards
  // zero; indices count from 0. Each form returns a new matrix and leaves this
  // one alone.
  //
  // Same shape as index; element (i, j) is the element of this matrix at linear
  // index index(i, j). Every index must lie in 0 .. rows * cols - 1, and this
  // matrix must have at least one column.
  CMatrix operator()(const CMatrix &index) const;
  // L x 1 column, L = rowList.GetLength(); element a is this(rowList(a), j).
  // Lists are read by linear index, so a row and a column list work alike.
  CMatrix operator()(const CMatrix &rowList, int j) const;
  // 1 x L row, L = colList.GetLength(); element b is this(i, colList(b)).
  CMatrix operator()(int i, const CMatrix &colList) const;
  // rowList.GetLength() x colList.GetLength(); element (a, b) is
  // this(rowList(a), colList(b)).
  CMatrix operator()(const CMatrix &rowList, const CMatrix &colList) const;

  // In-place edits; each returns this matrix as a constant reference.
  //
  // Column j becomes the first column of source: this(i, j) = source(i, 0).
  // Requires 0 <= j < cols and source.GetRows() >= rows.
  const CMatrix &SetCol(const CMatrix &source, int j);
  // Row i becomes the first row of source: this(i, j) = source(0, j).
  // Requires 0 <= i < rows and source.GetCols() >= cols.
  const CMatrix &SetRow(const CMatrix &source, int i);
  // New shape rows x cols. An element keeps its (i, j) position; elements
  // outside the new shape are lost and new ones are 0.0. This is no reshape.
  // Afterwards the column table is the identity.
  const CMatrix &Resize(int rows, int cols);
  // Exchanges rows a and b element by element. Both must be in range.
  const CMatrix &SwapRows(int a, int b);
  // Exchanges columns a and b in constant time, by exchanging two entries of the
  // column table. Both must be in range.
  const CMatrix &SwapCols(int a, int b);
  // The matrix becomes its transpose, cols x rows, with the identity table.
  // A matrix with no columns must not have more than 9 rows: its transpose
  // would be a shape that cannot exist.
  const CMatrix &Transpose();

  // Sorts every column ascending, in place and each by itself; index becomes a
  // matrix of this shape in which index(i, j) is the row that the element now at
  // (i, j) had before. The order of equal keys is that of the library's
  // quicksort, which is not stable. A 1 x n matrix is left alone (each column
  // has one element); use the free Sort for row vectors. index must be another
  // object than this matrix. NaN keys sort after every number, in the column
  // they came from.
  const CMatrix &Sort(CMatrix &index);

 protected:
  // Sets up storage for rows x cols on a matrix that holds none; writes no
  // element.
  void Alloc(int rows, int cols);
  // Assignment proper: takes the source's shape, elements and column order.
  CMatrix &Copy(const CMatrix &source);
  // Frees heap storage, if any, and leaves null pointers behind.
  void Release();

  double **m_ppCol;     // column table in use: entry j points at element (0, j)
  double *m_pData;      // data block in use
  int m_nRows;          // number of rows
  int m_nCols;          // number of columns
  double *m_apCol[9];   // in-object column table
  double m_adData[9];   // in-object data block

 private:
  // Internal code of the library reads the column table directly in its hot
  // loops; callers go through element access.
  friend class CMatrixAccess;
};

#endif  // QUADREL_MATRIX_MATRIX_H
