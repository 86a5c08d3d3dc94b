// Storage, lifetime and element access of CMatrix.
#include "quadrel/matrix/matrix.h"

#include <cstring>
#include <new>

#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/internal/storage.h"

void CMatrix::Alloc(int rows, int cols) {
  QUADREL_EXPECTS(LegalShape(rows, cols),
                  QuadrelFormat("%d x %d is no legal matrix shape", rows, cols));
  const int n = rows * cols;
  if (n > kInObject) {
    // The table has n entries, not cols: a later assignment may keep these
    // blocks for a shape with up to n columns.
    m_ppCol = static_cast<double **>(::operator new(sizeof(double *) * static_cast<size_t>(n)));
    try {
      m_pData = static_cast<double *>(::operator new(sizeof(double) * static_cast<size_t>(n)));
    } catch (...) {
      ::operator delete(m_ppCol);
      m_ppCol = m_apCol;
      m_pData = m_adData;
      m_nRows = 0;
      m_nCols = 0;
      throw;
    }
  } else {
    m_ppCol = m_apCol;
    m_pData = m_adData;
  }
  m_nRows = rows;
  m_nCols = cols;
  for (int j = 0; j < cols; ++j) m_ppCol[j] = m_pData + static_cast<size_t>(j) * rows;
}

void CMatrix::Release() {
  if (m_nRows * m_nCols > kInObject) {
    ::operator delete(m_ppCol);
    ::operator delete(m_pData);
  }
  m_ppCol = nullptr;
  m_pData = nullptr;
}

CMatrix &CMatrix::Copy(const CMatrix &source) {
  if (this == &source) return *this;
  const int s = source.m_nRows * source.m_nCols;
  const int t = m_nRows * m_nCols;
  if (NeedsNewStorage(s, t)) {
    Release();
    // A failed allocation must not leave a matrix whose shape claims heap
    // blocks that it does not hold: Alloc resets the shape to 0 x 0 then.
    m_nRows = 0;
    m_nCols = 0;
    Alloc(source.m_nRows, source.m_nCols);
  } else {
    // Existing storage is kept: in the object for t <= 9, both heap blocks for
    // s and t above 9.
    m_nRows = source.m_nRows;
    m_nCols = source.m_nCols;
  }
  if (s > 0) std::memcpy(m_pData, source.m_pData, sizeof(double) * static_cast<size_t>(s));
  // Reproduce the source's column permutation rather than undo it.
  for (int j = 0; j < m_nCols; ++j) m_ppCol[j] = m_pData + (source.m_ppCol[j] - source.m_pData);
  return *this;
}

CMatrix::CMatrix() { Alloc(1, 1); }

CMatrix::CMatrix(int rows, int cols) { Alloc(rows, cols); }

CMatrix::CMatrix(double value, int rows, int cols) {
  Alloc(rows, cols);
  const int n = rows * cols;
  for (int k = 0; k < n; ++k) m_pData[k] = value;
}

CMatrix::CMatrix(const double *values, int rows, int cols) {
  Alloc(rows, cols);
  // Row-major source into column-major storage of a fresh matrix.
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) m_ppCol[j][i] = values[static_cast<size_t>(i) * cols + j];
}

CMatrix::CMatrix(const double *const *rowArrays, int rows, int cols) {
  Alloc(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) m_ppCol[j][i] = rowArrays[i][j];
}

CMatrix::CMatrix(const CMatrix &source) {
  Alloc(source.m_nRows, source.m_nCols);
  Copy(source);
}

CMatrix::~CMatrix() { Release(); }

CMatrix &CMatrix::operator=(const CMatrix &source) { return Copy(source); }

double &CMatrix::operator()(int k) {
  QUADREL_EXPECTS(m_nCols >= 1 && k >= 0 && k < m_nRows * m_nCols,
                  QuadrelFormat("linear index %d is outside a %d x %d matrix", k, m_nRows,
                                m_nCols));
  return m_ppCol[k % m_nCols][k / m_nCols];
}

const double &CMatrix::operator()(int k) const {
  QUADREL_EXPECTS(m_nCols >= 1 && k >= 0 && k < m_nRows * m_nCols,
                  QuadrelFormat("linear index %d is outside a %d x %d matrix", k, m_nRows,
                                m_nCols));
  return m_ppCol[k % m_nCols][k / m_nCols];
}

double &CMatrix::operator()(int i, int j) {
  QUADREL_EXPECTS(i >= 0 && i < m_nRows && j >= 0 && j < m_nCols,
                  QuadrelFormat("index (%d, %d) is outside a %d x %d matrix", i, j, m_nRows,
                                m_nCols));
  return m_ppCol[j][i];
}

const double &CMatrix::operator()(int i, int j) const {
  QUADREL_EXPECTS(i >= 0 && i < m_nRows && j >= 0 && j < m_nCols,
                  QuadrelFormat("index (%d, %d) is outside a %d x %d matrix", i, j, m_nRows,
                                m_nCols));
  return m_ppCol[j][i];
}

int CMatrix::GetRows() const { return m_nRows; }

int CMatrix::GetCols() const { return m_nCols; }

int CMatrix::GetLength() const { return m_nRows > m_nCols ? m_nRows : m_nCols; }

double **CMatrix::GetBuffer2D() const {
  double **rows = static_cast<double **>(::operator new(sizeof(double *) * static_cast<size_t>(m_nRows)));
  int made = 0;
  try {
    for (; made < m_nRows; ++made) {
      rows[made] =
          static_cast<double *>(::operator new(sizeof(double) * static_cast<size_t>(m_nCols)));
      for (int j = 0; j < m_nCols; ++j) rows[made][j] = m_ppCol[j][made];
    }
  } catch (...) {
    for (int i = 0; i < made; ++i) ::operator delete(rows[i]);
    ::operator delete(rows);
    throw;
  }
  return rows;
}
