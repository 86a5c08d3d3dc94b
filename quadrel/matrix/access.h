// Direct access to the storage of a CMatrix for the library's own hot loops.
//
// Element (i, j) is Col(m, j)[i], exactly what operator()(i, j) reads, without
// a call across the library boundary. Code that walks a matrix element by
// element uses this; the column table is always respected.
#ifndef QUADREL_MATRIX_ACCESS_H
#define QUADREL_MATRIX_ACCESS_H

#include "quadrel/matrix/matrix.h"

class CMatrixAccess {
 public:
  static double *Col(CMatrix &m, int j) { return m.m_ppCol[j]; }
  static const double *Col(const CMatrix &m, int j) { return m.m_ppCol[j]; }
  static double &At(CMatrix &m, int i, int j) { return m.m_ppCol[j][i]; }
  static const double &At(const CMatrix &m, int i, int j) { return m.m_ppCol[j][i]; }
  static int Rows(const CMatrix &m) { return m.m_nRows; }
  static int Cols(const CMatrix &m) { return m.m_nCols; }
  // True if the matrix stores its elements on the heap (more than 9 of them).
  static bool OnHeap(const CMatrix &m) { return m.m_pData != m.m_adData; }
  // The data block, for whole-block work only.
  static double *Data(CMatrix &m) { return m.m_pData; }
  static double **Table(CMatrix &m) { return m.m_ppCol; }
};

#endif  // QUADREL_MATRIX_ACCESS_H
