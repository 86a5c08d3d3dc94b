// Shape fits: quadrel against Eigen doing the same work.
//
// The Eigen side follows quadrel's steps with Eigen's own means: centroid,
// 3 x 3 scatter and its SVD for lines and planes; the same design matrix and
// right-hand side, solved by SVD least squares, for circles, spheres and
// paraboloids; and the same residuals, element by element.
#include <Eigen/Dense>
#include <cmath>
#include <cstdint>

#include "bench_util.h"

namespace {

using Eigen::Index;
using Eigen::Matrix3d;
using Eigen::Matrix3Xd;
using Eigen::MatrixXd;
using Eigen::RowVectorXd;
using Eigen::Vector3d;
using Eigen::VectorXd;

constexpr int kThinUV = Eigen::ComputeThinU | Eigen::ComputeThinV;

// Data of one fit at one size, for both sides.
struct PointCase {
  CMatrix quadrel;
  Matrix3Xd eigen;
};

template <Block (*make)(int)>
const PointCase &Points(std::int64_t n) {
  return Cached<PointCase>(n, [n] {
    const Block block = make(static_cast<int>(n));
    return PointCase{ToQuadrel(block), ToEigen(block)};
  });
}

// Centroid, centred points and the SVD of their scatter matrix. Eigen sorts
// the singular values in decreasing order.
Eigen::JacobiSVD<Matrix3d> CentreAndScatter(const Matrix3Xd &points, Vector3d &centroid,
                                            Matrix3Xd &centred) {
  centroid = points.rowwise().mean();
  centred = points.colwise() - centroid;
  const Matrix3d scatter = centred * centred.transpose();
  return Eigen::JacobiSVD<Matrix3d>(scatter, Eigen::ComputeFullU | Eigen::ComputeFullV);
}

void EigenPlaneFit(const Matrix3Xd &points, Vector3d &centroid, Vector3d &normal,
                   VectorXd &residuals) {
  Matrix3Xd centred;
  const auto svd = CentreAndScatter(points, centroid, centred);
  normal = svd.matrixV().col(2);
  residuals.noalias() = centred.transpose() * normal;
}

void EigenLineFit(const Matrix3Xd &points, Vector3d &centroid, Vector3d &direction,
                  VectorXd &residuals) {
  Matrix3Xd centred;
  const auto svd = CentreAndScatter(points, centroid, centred);
  direction = svd.matrixV().col(0);
  residuals.resize(points.cols());
  for (Index i = 0; i < points.cols(); ++i) {
    const Vector3d d = centred.col(i);
    residuals(i) = (d - d.dot(direction) * direction).norm();
  }
}

void EigenSphereFit(const Matrix3Xd &points, Vector3d &centre, double &radius,
                    RowVectorXd &residuals) {
  const Index n = points.cols();
  MatrixXd design(n, 4);
  VectorXd rhs(n);
  for (Index i = 0; i < n; ++i) {
    const double x = points(0, i), y = points(1, i), z = points(2, i);
    design(i, 0) = 1.0;
    design(i, 1) = 2.0 * x;
    design(i, 2) = 2.0 * y;
    design(i, 3) = 2.0 * z;
    rhs(i) = x * x + y * y + z * z;
  }
  const VectorXd a = design.jacobiSvd(kThinUV).solve(rhs);
  radius = std::sqrt(std::fabs(a(0) + a(1) * a(1) + a(2) * a(2) + a(3) * a(3)));
  centre = a.tail<3>();
  residuals.resize(n);
  for (Index i = 0; i < n; ++i)
    residuals(i) = (points.col(i) - centre).norm() - radius;
}

// Plane fit, normal to +Z by the two-angle rotation of its azimuth and
// elevation, circle by linear least squares in the turned frame, centre back.
void EigenCircleFit(const Matrix3Xd &points, Vector3d &centre, Vector3d &normal, double &radius,
                    VectorXd &residuals) {
  Vector3d planeCentroid;
  EigenPlaneFit(points, planeCentroid, normal, residuals);
  const double azimuth = std::atan2(-normal(0), normal(2));
  const double elevation =
      std::atan2(normal(1), std::sqrt(normal(0) * normal(0) + normal(2) * normal(2)));
  const double ca = std::cos(azimuth), sa = std::sin(azimuth);
  const double ce = std::cos(elevation), se = std::sin(elevation);
  Matrix3d rotation;
  rotation << -ca, 0.0, -sa, -sa * se, -ce, ca * se, -sa * ce, se, ca * ce;
  const Matrix3Xd turned = rotation * points;

  const Index n = points.cols();
  MatrixXd design(n, 3);
  VectorXd rhs(n);
  double zmean = 0.0;
  for (Index i = 0; i < n; ++i) {
    const double x = turned(0, i), y = turned(1, i);
    design(i, 0) = 1.0;
    design(i, 1) = 2.0 * x;
    design(i, 2) = 2.0 * y;
    rhs(i) = x * x + y * y;
    zmean += turned(2, i);
  }
  zmean /= static_cast<double>(n);
  const VectorXd a = design.jacobiSvd(kThinUV).solve(rhs);
  radius = std::sqrt(std::fabs(a(0) + a(1) * a(1) + a(2) * a(2)));
  const Vector3d c(a(1), a(2), zmean);
  centre = rotation.transpose() * c;
  for (Index i = 0; i < n; ++i) {
    const double p = residuals(i);
    const double d = (turned.col(i) - c).norm();
    const double e = radius - std::sqrt(d * d - p * p);
    residuals(i) = std::sqrt(p * p + e * e);
  }
}

void EigenParaboloidFit(const Matrix3Xd &points, Vector3d &vertex, double &a, double &b,
                        double &sign, RowVectorXd &residuals) {
  const Index n = points.cols();
  MatrixXd design(n, 5);
  VectorXd rhs(n);
  for (Index i = 0; i < n; ++i) {
    const double x = points(0, i), y = points(1, i);
    design(i, 0) = x * x;
    design(i, 1) = 2.0 * x;
    design(i, 2) = y * y;
    design(i, 3) = 2.0 * y;
    design(i, 4) = 1.0;
    rhs(i) = points(2, i);
  }
  const VectorXd c = design.jacobiSvd(kThinUV).solve(rhs);
  a = std::sqrt(1.0 / std::fabs(c(0)));
  b = std::sqrt(1.0 / std::fabs(c(2)));
  sign = c(0) < 0.0 ? -1.0 : 1.0;
  vertex << -c(1) / c(0), -c(3) / c(2), (c(4) - c(1) * c(1) / c(0)) - c(3) * c(3) / c(2);
  residuals.resize(n);
  for (Index i = 0; i < n; ++i) {
    const double x = points(0, i), y = points(1, i), z = points(2, i);
    residuals(i) = z - x * c(0) * x - 2.0 * c(1) * x - y * c(2) * y - 2.0 * c(3) * y - c(4);
  }
}

void PlaneFitQuadrel(benchmark::State &state) {
  const CMatrix &points = Points<PlanePoints>(state.range(0)).quadrel;
  CMatrix centroid, normal, residuals;
  TimeQuadrel(state, state.range(0), [&] {
    PlaneFit(points, centroid, normal, residuals);
    benchmark::DoNotOptimize(residuals);
  });
}

void PlaneFitEigen(benchmark::State &state) {
  const Matrix3Xd &points = Points<PlanePoints>(state.range(0)).eigen;
  Vector3d centroid, normal;
  VectorXd residuals;
  TimeEigen(state, state.range(0), [&] {
    EigenPlaneFit(points, centroid, normal, residuals);
    benchmark::DoNotOptimize(residuals.data());
  });
}

void LineFitQuadrel(benchmark::State &state) {
  const CMatrix &points = Points<LinePoints>(state.range(0)).quadrel;
  CMatrix centroid, direction, residuals;
  TimeQuadrel(state, state.range(0), [&] {
    LineFit(points, centroid, direction, residuals);
    benchmark::DoNotOptimize(residuals);
  });
}

void LineFitEigen(benchmark::State &state) {
  const Matrix3Xd &points = Points<LinePoints>(state.range(0)).eigen;
  Vector3d centroid, direction;
  VectorXd residuals;
  TimeEigen(state, state.range(0), [&] {
    EigenLineFit(points, centroid, direction, residuals);
    benchmark::DoNotOptimize(residuals.data());
  });
}

void SphereFitQuadrel(benchmark::State &state) {
  const CMatrix &points = Points<SpherePoints>(state.range(0)).quadrel;
  CMatrix centre, residuals;
  double radius = 0.0;
  TimeQuadrel(state, state.range(0), [&] {
    SphereFit(points, centre, radius, residuals);
    benchmark::DoNotOptimize(radius);
    benchmark::DoNotOptimize(residuals);
  });
}

void SphereFitEigen(benchmark::State &state) {
  const Matrix3Xd &points = Points<SpherePoints>(state.range(0)).eigen;
  Vector3d centre;
  double radius = 0.0;
  RowVectorXd residuals;
  TimeEigen(state, state.range(0), [&] {
    EigenSphereFit(points, centre, radius, residuals);
    benchmark::DoNotOptimize(radius);
    benchmark::DoNotOptimize(residuals.data());
  });
}

void CircleFitQuadrel(benchmark::State &state) {
  const CMatrix &points = Points<CirclePoints>(state.range(0)).quadrel;
  CMatrix centre, normal, residuals;
  double radius = 0.0;
  TimeQuadrel(state, state.range(0), [&] {
    CircleFit(points, centre, normal, radius, residuals);
    benchmark::DoNotOptimize(radius);
    benchmark::DoNotOptimize(residuals);
  });
}

void CircleFitEigen(benchmark::State &state) {
  const Matrix3Xd &points = Points<CirclePoints>(state.range(0)).eigen;
  Vector3d centre, normal;
  double radius = 0.0;
  VectorXd residuals;
  TimeEigen(state, state.range(0), [&] {
    EigenCircleFit(points, centre, normal, radius, residuals);
    benchmark::DoNotOptimize(radius);
    benchmark::DoNotOptimize(residuals.data());
  });
}

void ParaboloidFitQuadrel(benchmark::State &state) {
  const CMatrix &points = Points<ParaboloidPoints>(state.range(0)).quadrel;
  CMatrix vertex, residuals;
  double a = 0.0, b = 0.0, sign = 0.0;
  TimeQuadrel(state, state.range(0), [&] {
    ParaboloidFit(points, vertex, a, b, sign, residuals);
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(residuals);
  });
}

void ParaboloidFitEigen(benchmark::State &state) {
  const Matrix3Xd &points = Points<ParaboloidPoints>(state.range(0)).eigen;
  Vector3d vertex;
  double a = 0.0, b = 0.0, sign = 0.0;
  RowVectorXd residuals;
  TimeEigen(state, state.range(0), [&] {
    EigenParaboloidFit(points, vertex, a, b, sign, residuals);
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(residuals.data());
  });
}

[[maybe_unused]] const bool registered = [] {
  RegisterPair("BM_PlaneFit", PlaneFitQuadrel, PlaneFitEigen, {1000, 100000, 1000000},
               benchmark::kMicrosecond);
  RegisterPair("BM_LineFit", LineFitQuadrel, LineFitEigen, {1000, 100000, 1000000},
               benchmark::kMicrosecond);
  RegisterPair("BM_SphereFit", SphereFitQuadrel, SphereFitEigen, {1000, 100000, 1000000},
               benchmark::kMicrosecond);
  RegisterPair("BM_CircleFit", CircleFitQuadrel, CircleFitEigen, {1000, 100000},
               benchmark::kMicrosecond);
  RegisterPair("BM_ParaboloidFit", ParaboloidFitQuadrel, ParaboloidFitEigen, {100000},
               benchmark::kMicrosecond);
  return true;
}();

}  // namespace
