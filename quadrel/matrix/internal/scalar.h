// Scalar helpers shared by every layer of the library.
#ifndef QUADREL_MATRIX_SCALAR_H
#define QUADREL_MATRIX_SCALAR_H

// x if x >= 0, else -x. Unlike fabs, -0.0 stays -0.0 (it compares >= 0); a NaN
// fails the test and comes back negated, with its sign bit flipped.
inline double AbsRef(const double &x) { return x >= 0 ? x : -x; }

// The first if it is the smaller, else the second.
inline int MinInt(const int &a, const int &b) { return a < b ? a : b; }

#endif  // QUADREL_MATRIX_SCALAR_H
