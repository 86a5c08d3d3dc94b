// Rows, columns and rearrangement: cut a matrix apart, join matrices, flip,
// transpose and sort them.
//
// Every function leaves its input alone and returns a new matrix. Orientation
// matters, since point sets are taken apart and joined with these: each
// function states which index it keeps.
//
// NaN and infinities are moved bit for bit like any value. Sort puts NaN after
// every number, infinities included, and index records where each NaN came from.
#ifndef QUADREL_FUNCTIONS_REARRANGE_H
#define QUADREL_FUNCTIONS_REARRANGE_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Column j of A as a rows x 1 column. Requires 0 <= j < A.GetCols().
QUADREL_API CMatrix Col(const CMatrix &A, int j);
// Row i of A as a 1 x cols row. Requires 0 <= i < A.GetRows().
QUADREL_API CMatrix Row(const CMatrix &A, int i);

// A and B side by side: A.rows x (A.cols + B.cols), columns of A first. B must
// have at least A.rows rows; rows of B beyond those are ignored.
QUADREL_API CMatrix ColCat(const CMatrix &A, const CMatrix &B);
// A on top of B: (A.rows + B.rows) x A.cols, rows of A first. B must have at
// least A.cols columns; columns of B beyond those are ignored.
QUADREL_API CMatrix RowCat(const CMatrix &A, const CMatrix &B);

// A without row i, (rows - 1) x cols, the other rows in order.
// Requires 0 <= i < A.GetRows().
QUADREL_API CMatrix ExcludeRow(const CMatrix &A, int i);
// A without column j, rows x (cols - 1), the other columns in order.
// Requires 0 <= j < A.GetCols().
QUADREL_API CMatrix ExcludeCol(const CMatrix &A, int j);
// A without row i and column j: the minor pattern of a cofactor.
// Requires 0 <= i < A.GetRows() and 0 <= j < A.GetCols().
QUADREL_API CMatrix Exclude(const CMatrix &A, int i, int j);

// A with its rows in reverse order; a middle row stays in place.
QUADREL_API CMatrix Flipud(const CMatrix &A);
// A with its columns in reverse order; a middle column stays in place. The
// columns are exchanged through the column table, which element access hides.
QUADREL_API CMatrix Fliplr(const CMatrix &A);

// A transposed, cols x rows.
QUADREL_API CMatrix Transpose(const CMatrix &A);

// Sort(A, index) without the index.
QUADREL_API CMatrix Sort(const CMatrix &A);
// A sorted ascending. A 1 x n matrix is sorted along its row and index is 1 x n
// of the column each value came from. Any other matrix has each column sorted
// by itself (rows are not kept together) and index of A's shape holds, per
// column, the row each value came from. Equal values come in the order of the
// library's quicksort, which is not stable. index must be another object than
// A; its earlier shape and content do not matter.
QUADREL_API CMatrix Sort(const CMatrix &A, CMatrix &index);

#endif  // QUADREL_FUNCTIONS_REARRANGE_H
