// Pattern constructors: new matrices of zeros, ones, the identity, arithmetic
// sequences and the main diagonal of a matrix.
//
// Each returns a new matrix by value. Dimensions go to CMatrix as they are, so
// they must form a legal shape (not negative, no 0-row matrix with more than 9
// columns); a dimension of 0 gives an empty result. Seq and Linspace always
// give a column vector.
//
// Non-finite arguments: Seq with a NaN or infinite quotient gives 0 x 1, and an
// infinite step over a finite range gives the single element start + 0 * step,
// NaN. Linspace computes each element from i, so a NaN end gives NaN
// throughout and an infinite one NaN at i = 0 (0 * inf) and infinities beyond.
// Diag copies NaN and infinities unchanged.
#ifndef QUADREL_FUNCTIONS_CONSTRUCTORS_H
#define QUADREL_FUNCTIONS_CONSTRUCTORS_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// n x n, all 0.0. Square, not a vector: use Zeros(n, 1) for a column.
QUADREL_API CMatrix Zeros(int n);
// rows x cols, all 0.0.
QUADREL_API CMatrix Zeros(int rows, int cols);
// All 0.0, with the shape of like; its elements are not read.
QUADREL_API CMatrix Zeros(const CMatrix &like);

// n x n, all 1.0. Square, not a vector.
QUADREL_API CMatrix Ones(int n);
// rows x cols, all 1.0.
QUADREL_API CMatrix Ones(int rows, int cols);
// All 1.0, with the shape of like; its elements are not read.
QUADREL_API CMatrix Ones(const CMatrix &like);

// The n x n identity.
QUADREL_API CMatrix Eye(int n);
// rows x cols of 0.0 with 1.0 at (k, k) for k below min(rows, cols).
QUADREL_API CMatrix Eye(int rows, int cols);

// Column of start + i * step for i = 0 .. n - 1, with
// n = trunc((stop - start) / step) + 1: stop is reached only when the quotient
// is whole, and a quotient in (-1, 1) gives the single element start. Each
// element is computed from i, not summed. A zero step, a quotient of -1 or
// lower, or a NaN or infinite quotient gives an empty 0 x 1 column. The count
// must fit an int.
QUADREL_API CMatrix Seq(double start, double stop, double step);

// Column of count values i * step + first, step = (last - first) / (count - 1).
// The last element is computed like the others, so it can miss last by
// rounding. A count of 1 gives the single value last; a count of 0 or below
// gives an empty 0 x 1 column.
QUADREL_API CMatrix Linspace(double first, double last, int count);

// Column of the main diagonal, min(rows, cols) x 1. A vector of either
// orientation counts as a matrix: its Diag is its first element, 1 x 1. Diag
// never builds a diagonal matrix.
QUADREL_API CMatrix Diag(const CMatrix &A);

#endif  // QUADREL_FUNCTIONS_CONSTRUCTORS_H
