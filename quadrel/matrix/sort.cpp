// Column-wise sorting of a CMatrix with a record of where each element came
// from.
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/matrix.h"
#include "quadrel/matrix/internal/sort_engine.h"

const CMatrix &CMatrix::Sort(CMatrix &index) {
  QUADREL_EXPECTS(&index != this, "index must be another matrix than the one sorted");
  // Resize leaves index with the identity column table, so its column j lies in
  // one block beside this matrix's column j, whatever order this one's table has.
  index.Resize(m_nRows, m_nCols);
  for (int i = 0; i < m_nRows; ++i)
    for (int j = 0; j < m_nCols; ++j)
      index.m_ppCol[j][i] = static_cast<double>(i);
  for (int j = 0; j < m_nCols; ++j)
    SortWithIndex(m_ppCol[j], index.m_ppCol[j], static_cast<std::size_t>(m_nRows), sizeof(double),
                  CompareDouble);
  return *this;
}
