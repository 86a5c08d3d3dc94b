// Text output of CMatrix.
#include "quadrel/matrix/stream.h"

#include "quadrel/matrix/internal/contract.h"

std::ostream &operator<<(std::ostream &stream, const CMatrix &A) {
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  const bool vector = rows == 1 || cols == 1;
  QUADREL_EXPECTS(!vector || rows * cols > 0,
                  "a " + QuadrelDims(A) + " matrix has no element to write as a vector");
  stream << "[ ";
  if (vector) {
    // One line in order of position; a column is told apart by the quote.
    const int length = A.GetLength();
    for (int k = 0; k < length; ++k) {
      if (k > 0) stream << " ";
      stream << A(k);
    }
    stream << (rows == 1 ? " ];" : " ]';");
    return stream;
  }
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < cols; ++j) {
      if (j > 0) stream << " ";
      stream << A(i, j);
    }
    stream << (i + 1 < rows ? "; ...\n" : " ];");
  }
  return stream;
}
