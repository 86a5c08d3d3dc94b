// Direct access to the storage of a CMatrix for the library's own hot loops.
//
// Element (i, j) is Col(m, j)[i], exactly what operator()(i, j) reads, without
// a call across the library boundary. Code that walks a matrix element by
// element uses this; the column table is always respected. Reshape lets a
// function fill an output where it stands.
#ifndef QUADREL_MATRIX_INTERNAL_ACCESS_H
#define QUADREL_MATRIX_INTERNAL_ACCESS_H

#include <cstddef>

#include "quadrel/matrix/internal/storage.h"
#include "quadrel/matrix/matrix.h"

class CMatrixAccess {
  // The class's in-object arrays are the ones that kInObject counts.
  static_assert(sizeof(CMatrix::m_adData) == kInObject * sizeof(double) &&
                    sizeof(CMatrix::m_apCol) == kInObject * sizeof(double *),
                "kInObject must match the in-object arrays of CMatrix");

 public:
  static double *Col(CMatrix &m, int j) { return m.m_ppCol[j]; }
  static const double *Col(const CMatrix &m, int j) { return m.m_ppCol[j]; }
  static double &At(CMatrix &m, int i, int j) { return m.m_ppCol[j][i]; }
  static const double &At(const CMatrix &m, int i, int j) { return m.m_ppCol[j][i]; }
  static int Rows(const CMatrix &m) { return m.m_nRows; }
  static int Cols(const CMatrix &m) { return m.m_nCols; }
  // True if the matrix stores its elements on the heap (more than kInObject of them).
  static bool OnHeap(const CMatrix &m) { return m.m_pData != m.m_adData; }
  // The data block, for whole-block work only.
  static double *Data(CMatrix &m) { return m.m_pData; }
  static double **Table(CMatrix &m) { return m.m_ppCol; }
  static const double *const *Table(const CMatrix &m) { return m.m_ppCol; }

  // Gives m the shape rows x cols with the identity column table, exactly as
  // assigning a fresh matrix of that shape would (the storage is kept or
  // replaced by the same rule), but without building and copying one. Element
  // values are undefined afterwards; the caller writes every one of them.
  // Lets a function fill an output in place instead of through a temporary.
  static void Reshape(CMatrix &m, int rows, int cols) {
    const int s = rows * cols;
    const int t = m.m_nRows * m.m_nCols;
    if (NeedsNewStorage(s, t)) {
      m.Release();
      m.m_nRows = 0;
      m.m_nCols = 0;
      m.Alloc(rows, cols);
      return;
    }
    m.m_nRows = rows;
    m.m_nCols = cols;
    for (int j = 0; j < cols; ++j)
      m.m_ppCol[j] = m.m_pData + static_cast<std::ptrdiff_t>(j) * rows;
  }
};

#endif  // QUADREL_MATRIX_INTERNAL_ACCESS_H
