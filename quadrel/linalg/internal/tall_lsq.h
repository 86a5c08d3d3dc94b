// Least squares for tall systems with few unknowns, on column arrays.
//
// The shape fits solve systems of one equation per point and a handful of
// unknowns. TallLsq gives exactly the solution and condition number of Lsq for
// such a system, but works in place on columns: each pass over the equations
// reads and writes only the columns it needs, the rotations of the
// diagonalisation go into the last pass, and the left singular vectors are
// never stored. It is internal: Lsq uses it, and so do the fits, which hand it
// the columns of their own design matrix to work on.
#ifndef QUADREL_LINALG_TALL_LSQ_H
#define QUADREL_LINALG_TALL_LSQ_H

#include <memory>

// The largest number of unknowns TallLsq takes.
constexpr int kTallLsqMaxUnknowns = 6;

// Up to kTallLsqMaxUnknowns + 1 columns of m doubles on the heap (the unknowns'
// columns and a right-hand side), for a caller to fill and TallLsq to work on.
// The values start undefined; the memory is freed with the object.
class TallColumns {
 public:
  TallColumns(int m, int count);
  double *operator[](int j) { return table_[j]; }
  double *const *Table() { return table_; }

 private:
  std::unique_ptr<double[]> data_[kTallLsqMaxUnknowns + 1];
  double *table_[kTallLsqMaxUnknowns + 1];
};

// Lsq(A, b, x) for A of m x n with m >= n >= 1, n <= kTallLsqMaxUnknowns, and
// one right-hand side, bit for bit: x[0..n-1] receives the solution and the
// condition number is returned. columns[j][k] is element (k, j) of A; the
// columns are overwritten with intermediate results. b[0..m-1] is only read;
// x may not overlap the columns or b. Needs no heap memory.
double TallLsq(double *const *columns, int m, int n, const double *b, double *x);

#endif  // QUADREL_LINALG_TALL_LSQ_H
