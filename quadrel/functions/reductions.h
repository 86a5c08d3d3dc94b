// Reductions, statistics and element maps.
//
// Sum, Mean, Std, Min and Max share one rule of shapes. A matrix with exactly
// one row (1 x n, also 1 x 1) reduces along that row to 1 x 1. Any other
// r x c matrix reduces each column by itself to a 1 x c row, so a column vector
// gives 1 x 1 as well; there is no per-row reduction of a true matrix. Results
// are always matrices, even when 1 x 1.
//
// Out-parameters take their shape from the function: a new 1 x 1 in the row
// case, 1 x c in the column case. Each must be another object than A.
//
// NaN and infinities travel through Sum, Mean and Std: a path with a NaN, or
// with infinities of both signs, gives NaN, and Std gives NaN for any infinity
// (inf - inf in its deviation). Min, Max, Any, All and Find state their rule
// below.
#ifndef QUADREL_FUNCTIONS_REDUCTIONS_H
#define QUADREL_FUNCTIONS_REDUCTIONS_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Sum of the elements, added from 0.0 in rising index. An empty path sums to
// 0.0: 1 x 0 gives 1 x 1, r x 0 (r other than 1) gives 1 x 0.
QUADREL_API CMatrix Sum(const CMatrix &A);

// Arithmetic mean: the sum divided by the element count of the path. An empty
// path gives NaN (0 / 0).
QUADREL_API CMatrix Mean(const CMatrix &A);

// Population standard deviation (divisor n), from one pass:
// sqrt(|q / n - m * m|) with m = s / n, s the sum and q the sum of squares. The
// absolute value keeps rounding from producing the root of a negative number,
// so a constant path gives 0 or nearly 0, never NaN. An empty path gives NaN.
QUADREL_API CMatrix Std(const CMatrix &A);
// As Std(A); mean receives the means m.
QUADREL_API CMatrix Std(const CMatrix &A, CMatrix &mean);

// Smallest element of each path. See Min(A, index).
QUADREL_API CMatrix Min(const CMatrix &A);
// Smallest element of each path; index receives its position, counted from 0:
// the column number in the row case, the row number in the column case. The
// comparison is strict, so the first of equal elements wins, and a NaN never
// wins a comparison: it is the result only where it is the first element of
// its path. Every path must have an element: 0 x c with c >= 1 and 1 x 0 are
// not allowed (r x 0 with r other than 1 gives 1 x 0).
QUADREL_API CMatrix Min(const CMatrix &A, CMatrix &index);

// Largest element of each path. See Max(A, index).
QUADREL_API CMatrix Max(const CMatrix &A);
// Largest element of each path and its position, by the rules of Min(A, index)
// (strict comparison, first of equals wins, NaN never wins, no empty path).
QUADREL_API CMatrix Max(const CMatrix &A, CMatrix &index);

// Elementwise absolute value, shape of A: -x where x < 0, else x, so -0.0 and
// NaN come back unchanged.
QUADREL_API CMatrix Abs(const CMatrix &A);

// 1 if some element is not equal to 0.0, else 0. -0.0 counts as zero and NaN as
// non-zero. The whole matrix is looked at, row by row, with no column logic; an
// empty matrix gives 0.
QUADREL_API int Any(const CMatrix &A);

// 0 if some element equals 0.0 (or -0.0), else 1. NaN is not 0.0 and does not
// make the result 0. An empty matrix gives 1.
QUADREL_API int All(const CMatrix &A);

// Number of elements not equal to 0.0 (NaN counts, -0.0 does not). If there
// are any, index becomes a count x 1 column of their linear indices
// i * cols + j, rising; A(k) with such a k is the element found. If there are
// none, index is left exactly as it was, shape and content. index must be
// another object than A.
QUADREL_API int Find(const CMatrix &A, CMatrix &index);

// A with f applied to every element: R(i, j) = f(A(i, j)). f is called once per
// element, row by row. f must not be null.
QUADREL_API CMatrix Eval(CMatrix A, double (*f)(double));

#endif  // QUADREL_FUNCTIONS_REDUCTIONS_H
