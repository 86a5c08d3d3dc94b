// Selection by index matrices and in-place edits of CMatrix.
#include <utility>

#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/internal/storage.h"
#include "quadrel/matrix/matrix.h"

namespace {

// An index number is a double truncated towards zero. It lands in 0 .. n - 1
// exactly when -1 < value < n; a NaN fails both tests.
bool IndexFits(double value, int n) {
  return value > -1.0 && value < static_cast<double>(n);
}

int Truncate(double value) {
  return static_cast<int>(value);
}

// A list is read by linear index 0 .. GetLength() - 1, which needs elements:
// a list with length but no rows or no columns has none to read.
bool ReadableList(const CMatrix &list) {
  return list.GetLength() == 0 || (list.GetRows() >= 1 && list.GetCols() >= 1);
}

// First list entry that is no index below n, or -1 if all are.
int FirstBadEntry(const CMatrix &list, int n) {
  const int length = list.GetLength();
  for (int a = 0; a < length; ++a)
    if (!IndexFits(list(a), n)) return a;
  return -1;
}

}  // namespace

CMatrix CMatrix::operator()(const CMatrix &index) const {
  const int count = m_nRows * m_nCols;
  const int rows = index.GetRows();
  const int cols = index.GetCols();
  QUADREL_EXPECTS(rows * cols == 0 || m_nCols >= 1,
                  "linear selection from a matrix with no columns");
#if QUADREL_CHECKED
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      QUADREL_EXPECTS(IndexFits(index(i, j), count),
                      QuadrelFormat("index element (%d, %d) = %g is outside 0 .. %d", i, j,
                                    index(i, j), count - 1));
#else
  (void)count;
#endif
  CMatrix result(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      result(i, j) = (*this)(Truncate(index(i, j)));
  return result;
}

CMatrix CMatrix::operator()(const CMatrix &rowList, int j) const {
  const int length = rowList.GetLength();
  QUADREL_EXPECTS(ReadableList(rowList), "row list " + QuadrelDims(rowList) + " has no elements");
  QUADREL_EXPECTS(length == 0 || (j >= 0 && j < m_nCols),
                  QuadrelFormat("column %d is outside a %d x %d matrix", j, m_nRows, m_nCols));
  QUADREL_EXPECTS(FirstBadEntry(rowList, m_nRows) < 0,
                  QuadrelFormat("row list element %d is no row of a %d x %d matrix",
                                FirstBadEntry(rowList, m_nRows), m_nRows, m_nCols));
  CMatrix result(length, 1);
  for (int a = 0; a < length; ++a)
    result(a, 0) = m_ppCol[j][Truncate(rowList(a))];
  return result;
}

CMatrix CMatrix::operator()(int i, const CMatrix &colList) const {
  const int length = colList.GetLength();
  QUADREL_EXPECTS(ReadableList(colList),
                  "column list " + QuadrelDims(colList) + " has no elements");
  QUADREL_EXPECTS(length == 0 || (i >= 0 && i < m_nRows),
                  QuadrelFormat("row %d is outside a %d x %d matrix", i, m_nRows, m_nCols));
  QUADREL_EXPECTS(FirstBadEntry(colList, m_nCols) < 0,
                  QuadrelFormat("column list element %d is no column of a %d x %d matrix",
                                FirstBadEntry(colList, m_nCols), m_nRows, m_nCols));
  CMatrix result(1, length);
  for (int b = 0; b < length; ++b)
    result(0, b) = m_ppCol[Truncate(colList(b))][i];
  return result;
}

CMatrix CMatrix::operator()(const CMatrix &rowList, const CMatrix &colList) const {
  const int rows = rowList.GetLength();
  const int cols = colList.GetLength();
  QUADREL_EXPECTS(ReadableList(rowList), "row list " + QuadrelDims(rowList) + " has no elements");
  QUADREL_EXPECTS(ReadableList(colList),
                  "column list " + QuadrelDims(colList) + " has no elements");
  // With an empty partner list nothing is read, so the entries need not fit.
  QUADREL_EXPECTS(cols == 0 || FirstBadEntry(rowList, m_nRows) < 0,
                  QuadrelFormat("row list element %d is no row of a %d x %d matrix",
                                FirstBadEntry(rowList, m_nRows), m_nRows, m_nCols));
  QUADREL_EXPECTS(rows == 0 || FirstBadEntry(colList, m_nCols) < 0,
                  QuadrelFormat("column list element %d is no column of a %d x %d matrix",
                                FirstBadEntry(colList, m_nCols), m_nRows, m_nCols));
  CMatrix result(rows, cols);
  for (int a = 0; a < rows; ++a) {
    const int i = Truncate(rowList(a));
    for (int b = 0; b < cols; ++b)
      result(a, b) = m_ppCol[Truncate(colList(b))][i];
  }
  return result;
}

const CMatrix &CMatrix::SetCol(const CMatrix &source, int j) {
  QUADREL_EXPECTS(j >= 0 && j < m_nCols,
                  QuadrelFormat("column %d is outside a %d x %d matrix", j, m_nRows, m_nCols));
  QUADREL_EXPECTS(
      source.GetRows() >= m_nRows && (m_nRows == 0 || source.GetCols() >= 1),
      "source " + QuadrelDims(source) + " has no column of " + QuadrelFormat("%d rows", m_nRows));
  for (int i = 0; i < m_nRows; ++i)
    m_ppCol[j][i] = source(i, 0);
  return *this;
}

const CMatrix &CMatrix::SetRow(const CMatrix &source, int i) {
  QUADREL_EXPECTS(i >= 0 && i < m_nRows,
                  QuadrelFormat("row %d is outside a %d x %d matrix", i, m_nRows, m_nCols));
  QUADREL_EXPECTS(
      source.GetCols() >= m_nCols && (m_nCols == 0 || source.GetRows() >= 1),
      "source " + QuadrelDims(source) + " has no row of " + QuadrelFormat("%d columns", m_nCols));
  for (int j = 0; j < m_nCols; ++j)
    m_ppCol[j][i] = source(0, j);
  return *this;
}

const CMatrix &CMatrix::Resize(int rows, int cols) {
  QUADREL_EXPECTS(LegalShape(rows, cols),
                  QuadrelFormat("%d x %d is no legal matrix shape", rows, cols));
  // Built afresh and assigned, so that storage follows the rules of assignment
  // and the column table ends up the identity.
  CMatrix resized(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      resized.m_ppCol[j][i] = (i < m_nRows && j < m_nCols) ? m_ppCol[j][i] : 0.0;
  Copy(resized);
  return *this;
}

const CMatrix &CMatrix::SwapRows(int a, int b) {
  QUADREL_EXPECTS(
      a >= 0 && a < m_nRows && b >= 0 && b < m_nRows,
      QuadrelFormat("rows %d and %d are not both in a %d x %d matrix", a, b, m_nRows, m_nCols));
  for (int j = 0; j < m_nCols; ++j)
    std::swap(m_ppCol[j][a], m_ppCol[j][b]);
  return *this;
}

const CMatrix &CMatrix::SwapCols(int a, int b) {
  QUADREL_EXPECTS(
      a >= 0 && a < m_nCols && b >= 0 && b < m_nCols,
      QuadrelFormat("columns %d and %d are not both in a %d x %d matrix", a, b, m_nRows, m_nCols));
  // Only the table changes: constant time, no element moves.
  std::swap(m_ppCol[a], m_ppCol[b]);
  return *this;
}

const CMatrix &CMatrix::Transpose() {
  QUADREL_EXPECTS(
      LegalShape(m_nCols, m_nRows),
      QuadrelFormat("the transpose %d x %d would be no legal matrix shape", m_nCols, m_nRows));
  CMatrix transposed(m_nCols, m_nRows);
  for (int i = 0; i < m_nCols; ++i)
    for (int j = 0; j < m_nRows; ++j)
      transposed.m_ppCol[j][i] = m_ppCol[i][j];
  Copy(transposed);
  return *this;
}
