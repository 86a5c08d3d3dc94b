// A 3 x n point set copied once into three coordinate arrays, with the checks
// every metrology entry makes before it starts.
#ifndef QUADREL_METROLOGY_INTERNAL_POINT_BLOCK_H
#define QUADREL_METROLOGY_INTERNAL_POINT_BLOCK_H

#include <vector>

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/internal/vec3.h"
#include "quadrel/metrology/status.h"

class PointBlock {
 public:
  // Checks and copies a point set: kBadShape unless points is 3 x n,
  // kTooFewPoints when n < minimum, kNonFinite for a NaN or infinite
  // coordinate, kDegenerate when the points spread in fewer than spread
  // directions (see Spread), else kConverged. centroid() and extent() are then the mean
  // point (corrected by a second pass) and the largest distance from it.
  MetrologyStatus Load(const CMatrix &points, int minimum, int spread = 0);

  // Becomes a copy of every stride-th point of from, starting with the first.
  void TakeEvery(const PointBlock &from, int stride);

  int size() const { return n_; }
  bool finite() const { return finite_; }
  Vec3 operator[](int i) const { return {x_[i], y_[i], z_[i]}; }
  const double *x() const { return x_.data(); }
  const double *y() const { return y_.data(); }
  const double *z() const { return z_.data(); }
  const Vec3 &centroid() const { return centroid_; }
  double extent() const { return extent_; }
  // Scatter matrix about the centroid, row-major.
  void Scatter(double s[9]) const;
  // The number of independent directions in which the points spread: 0 when
  // they coincide, 1 on a line, 2 in a plane, 3 otherwise (to 1e-7 of the
  // largest spread, in root mean square distance). axes are the principal directions, least spread
  // first.
  int Spread(Vec3 axes[3]) const;

 private:
  // Sets finite_, centroid_ and extent_ from the coordinates.
  void Summarise();

  int n_ = 0;
  bool finite_ = true;
  std::vector<double> x_, y_, z_;
  Vec3 centroid_;
  double extent_ = 0.0;
};

// A column vector of the n values.
CMatrix ColumnOf(const std::vector<double> &values);
// The first column of a matrix of at least 3 rows, as a Vec3.
inline Vec3 VecOf(const CMatrix &m) {
  return {m(0, 0), m(1, 0), m(2, 0)};
}
// A 3 x 1 column holding v.
CMatrix ColumnOf(const Vec3 &v);
// A rows x cols matrix with every element NaN.
CMatrix NanMatrix(int rows, int cols);

#endif  // QUADREL_METROLOGY_INTERNAL_POINT_BLOCK_H
