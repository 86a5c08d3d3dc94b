#include "quadrel/metrology/internal/point_block.h"

#include <cmath>
#include <limits>

MetrologyStatus PointBlock::Load(const CMatrix &points, int minimum, int spread) {
  if (points.GetRows() != 3) return MetrologyStatus::kBadShape;
  if (points.GetCols() < minimum) return MetrologyStatus::kTooFewPoints;
  n_ = points.GetCols();
  x_.resize(static_cast<size_t>(n_));
  y_.resize(static_cast<size_t>(n_));
  z_.resize(static_cast<size_t>(n_));
  double **rows = points.GetBuffer2D();
  for (int i = 0; i < n_; ++i) {
    x_[i] = rows[0][i];
    y_[i] = rows[1][i];
    z_[i] = rows[2][i];
  }
  for (int r = 0; r < 3; ++r)
    ::operator delete(rows[r]);
  ::operator delete(rows);

  Summarise();
  if (!finite_) return MetrologyStatus::kNonFinite;
  Vec3 axes[3];
  if (spread > 0 && Spread(axes) < spread) return MetrologyStatus::kDegenerate;
  return MetrologyStatus::kConverged;
}

void PointBlock::Scatter(double s[9]) const {
  for (int k = 0; k < 9; ++k)
    s[k] = 0.0;
  for (int i = 0; i < n_; ++i) {
    const Vec3 d = (*this)[i] - centroid_;
    s[0] += d.x * d.x;
    s[1] += d.x * d.y;
    s[2] += d.x * d.z;
    s[4] += d.y * d.y;
    s[5] += d.y * d.z;
    s[8] += d.z * d.z;
  }
  s[3] = s[1];
  s[6] = s[2];
  s[7] = s[5];
}

void PointBlock::Summarise() {
  Vec3 sum;
  for (int i = 0; i < n_; ++i) {
    sum.x += x_[i];
    sum.y += y_[i];
    sum.z += z_[i];
  }
  finite_ = std::isfinite(sum.x) && std::isfinite(sum.y) && std::isfinite(sum.z);
  if (!finite_ || n_ == 0) return;
  const Vec3 mean = (1.0 / n_) * sum;
  // A second pass removes the rounding of the first mean, which matters when
  // the points lie far from the origin compared with their spread.
  Vec3 correction;
  for (int i = 0; i < n_; ++i)
    correction = correction + ((*this)[i] - mean);
  centroid_ = mean + (1.0 / n_) * correction;
  double far = 0.0;
  for (int i = 0; i < n_; ++i)
    far = std::fmax(far, Dot((*this)[i] - centroid_, (*this)[i] - centroid_));
  extent_ = std::sqrt(far);
}

void PointBlock::TakeEvery(const PointBlock &from, int stride) {
  x_.clear();
  y_.clear();
  z_.clear();
  for (int i = 0; i < from.n_; i += stride) {
    x_.push_back(from.x_[i]);
    y_.push_back(from.y_[i]);
    z_.push_back(from.z_[i]);
  }
  n_ = static_cast<int>(x_.size());
  Summarise();
}

int PointBlock::Spread(Vec3 axes[3]) const {
  double s[9], values[3];
  Scatter(s);
  SymmetricEigen3(s, values, axes);
  if (!(values[2] > 0.0)) return 0;
  int rank = 1;
  for (int k = 0; k < 2; ++k)
    if (values[k] > 1e-14 * values[2]) ++rank;
  return rank;
}

CMatrix ColumnOf(const std::vector<double> &values) {
  const int n = static_cast<int>(values.size());
  if (n == 0) return CMatrix(0, 1);
  return CMatrix(values.data(), n, 1);
}

CMatrix ColumnOf(const Vec3 &v) {
  const double values[3] = {v.x, v.y, v.z};
  return CMatrix(values, 3, 1);
}

CMatrix NanMatrix(int rows, int cols) {
  return CMatrix(std::numeric_limits<double>::quiet_NaN(), rows, cols);
}
