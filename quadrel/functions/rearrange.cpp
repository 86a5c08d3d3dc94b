// Rows, columns and rearrangement.
#include "quadrel/functions/rearrange.h"

#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/contract.h"

CMatrix Col(const CMatrix &A, int j) {
  QUADREL_EXPECTS(j >= 0 && j < A.GetCols(),
                  QuadrelFormat("column %d is outside a ", j) + QuadrelDims(A) + " matrix");
  const int rows = A.GetRows();
  CMatrix R(rows, 1);
  double *target = CMatrixAccess::Col(R, 0);
  const double *source = CMatrixAccess::Col(A, j);
  for (int i = 0; i < rows; ++i)
    target[i] = source[i];
  return R;
}

CMatrix Row(const CMatrix &A, int i) {
  QUADREL_EXPECTS(i >= 0 && i < A.GetRows(),
                  QuadrelFormat("row %d is outside a ", i) + QuadrelDims(A) + " matrix");
  const int cols = A.GetCols();
  CMatrix R(1, cols);
  for (int j = 0; j < cols; ++j)
    CMatrixAccess::At(R, 0, j) = CMatrixAccess::At(A, i, j);
  return R;
}

CMatrix ColCat(const CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(B.GetRows() >= A.GetRows(), "right operand is " + QuadrelDims(B) +
                                                  ", fewer rows than the left operand's " +
                                                  QuadrelDims(A));
  const int rows = A.GetRows();
  const int colsA = A.GetCols();
  const int colsB = B.GetCols();
  CMatrix R(rows, colsA + colsB);
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < colsA; ++j)
      CMatrixAccess::At(R, i, j) = CMatrixAccess::At(A, i, j);
    for (int j = 0; j < colsB; ++j)
      CMatrixAccess::At(R, i, colsA + j) = CMatrixAccess::At(B, i, j);
  }
  return R;
}

CMatrix RowCat(const CMatrix &A, const CMatrix &B) {
  QUADREL_EXPECTS(B.GetCols() >= A.GetCols(), "bottom operand is " + QuadrelDims(B) +
                                                  ", fewer columns than the top operand's " +
                                                  QuadrelDims(A));
  const int rowsA = A.GetRows();
  const int rowsB = B.GetRows();
  const int cols = A.GetCols();
  CMatrix R(rowsA + rowsB, cols);
  for (int j = 0; j < cols; ++j) {
    double *target = CMatrixAccess::Col(R, j);
    const double *top = CMatrixAccess::Col(A, j);
    const double *bottom = CMatrixAccess::Col(B, j);
    for (int i = 0; i < rowsA; ++i)
      target[i] = top[i];
    for (int i = 0; i < rowsB; ++i)
      target[rowsA + i] = bottom[i];
  }
  return R;
}

CMatrix ExcludeRow(const CMatrix &A, int i) {
  QUADREL_EXPECTS(i >= 0 && i < A.GetRows(),
                  QuadrelFormat("row %d is outside a ", i) + QuadrelDims(A) + " matrix");
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  CMatrix R(rows - 1, cols);
  for (int j = 0; j < cols; ++j) {
    double *target = CMatrixAccess::Col(R, j);
    const double *source = CMatrixAccess::Col(A, j);
    int next = 0;
    for (int r = 0; r < rows; ++r)
      if (r != i) target[next++] = source[r];
  }
  return R;
}

CMatrix ExcludeCol(const CMatrix &A, int j) {
  QUADREL_EXPECTS(j >= 0 && j < A.GetCols(),
                  QuadrelFormat("column %d is outside a ", j) + QuadrelDims(A) + " matrix");
  const int rows = A.GetRows();
  const int cols = A.GetCols();
  CMatrix R(rows, cols - 1);
  int next = 0;
  for (int c = 0; c < cols; ++c) {
    if (c == j) continue;
    double *target = CMatrixAccess::Col(R, next++);
    const double *source = CMatrixAccess::Col(A, c);
    for (int r = 0; r < rows; ++r)
      target[r] = source[r];
  }
  return R;
}

CMatrix Exclude(const CMatrix &A, int i, int j) {
  QUADREL_EXPECTS(
      i >= 0 && i < A.GetRows() && j >= 0 && j < A.GetCols(),
      QuadrelFormat("row %d or column %d is outside a ", i, j) + QuadrelDims(A) + " matrix");
  // Dropping the row keeps A's columns, so j applies unchanged to the result.
  return ExcludeCol(ExcludeRow(A, i), j);
}

CMatrix Flipud(const CMatrix &A) {
  CMatrix R(A);
  const int rows = R.GetRows();
  for (int i = 0; i < rows / 2; ++i)
    R.SwapRows(i, rows - i - 1);
  return R;
}

CMatrix Fliplr(const CMatrix &A) {
  CMatrix R(A);
  const int cols = R.GetCols();
  // Constant time per pair: only entries of the column table move.
  for (int j = 0; j < cols / 2; ++j)
    R.SwapCols(j, cols - j - 1);
  return R;
}

CMatrix Transpose(const CMatrix &A) {
  CMatrix R(A);
  R.Transpose();
  return R;
}

CMatrix Sort(const CMatrix &A) {
  CMatrix index;
  return Sort(A, index);
}

CMatrix Sort(const CMatrix &A, CMatrix &index) {
  QUADREL_EXPECTS(&index != &A, "index must be another matrix than the one sorted");
  CMatrix R(A);
  if (R.GetRows() == 1) {
    // The member sorts columns; a row vector goes through as a column.
    R.Transpose();
    R.Sort(index);
    index.Transpose();
    R.Transpose();
  } else {
    R.Sort(index);
  }
  return R;
}
