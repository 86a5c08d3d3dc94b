#include "quadrel/metrology/gaussian_circle_sphere.h"

#include <cmath>
#include <limits>
#include <vector>

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/metrology/internal/gauss_newton.h"
#include "quadrel/metrology/internal/point_block.h"

namespace {

struct SphereState {
  Vec3 c;
  double r = 0.0;
};

class SphereProblem {
 public:
  using State = SphereState;
  SphereProblem(const PointBlock &block, double scale) : block_(block), scale_(scale) {}
  int Params() const { return 4; }
  double Scale() const { return scale_; }
  double StepLength(const double *d) const {
    return std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2] + d[3] * d[3]);
  }
  State Step(const State &s, const double *d) const {
    return {{s.c.x + d[0], s.c.y + d[1], s.c.z + d[2]}, s.r + d[3]};
  }
  // Residual |p - c| - r; its gradient is (-unit(p - c), -1).
  bool Evaluate(const State &s, NormalEquations &eq) const {
    eq.Clear(4);
    const double *x = block_.x(), *y = block_.y(), *z = block_.z();
    double a00 = 0, a01 = 0, a02 = 0, a03 = 0, a11 = 0, a12 = 0, a13 = 0, a22 = 0, a23 = 0;
    double g0 = 0, g1 = 0, g2 = 0, g3 = 0, cost = 0;
    const int n = block_.size();
    for (int i = 0; i < n; ++i) {
      const double dx = x[i] - s.c.x, dy = y[i] - s.c.y, dz = z[i] - s.c.z;
      const double rho = std::sqrt(dx * dx + dy * dy + dz * dz);
      const double inv = rho > 0.0 ? 1.0 / rho : 0.0;
      const double nx = dx * inv, ny = dy * inv, nz = dz * inv, r = rho - s.r;
      a00 += nx * nx;
      a01 += nx * ny;
      a02 += nx * nz;
      a03 += nx;
      a11 += ny * ny;
      a12 += ny * nz;
      a13 += ny;
      a22 += nz * nz;
      a23 += nz;
      g0 -= nx * r;
      g1 -= ny * r;
      g2 -= nz * r;
      g3 -= r;
      cost += r * r;
    }
    const double jtj[16] = {a00, a01, a02, a03, a01, a11, a12, a13,
                            a02, a12, a22, a23, a03, a13, a23, static_cast<double>(n)};
    for (int k = 0; k < 16; ++k)
      eq.jtj[k] = jtj[k];
    eq.jtr[0] = g0;
    eq.jtr[1] = g1;
    eq.jtr[2] = g2;
    eq.jtr[3] = g3;
    eq.cost = cost;
    eq.m = n;
    return eq.Finite();
  }

 private:
  const PointBlock &block_;
  double scale_;
};

struct CircleState {
  Vec3 c, n, u, v;
  double r = 0.0;
};

CircleState MakeCircle(const Vec3 &c, const Vec3 &n, double r) {
  CircleState s{c, n, {}, {}, r};
  Complement(n, s.u, s.v);
  return s;
}

// Each point gives two residuals: its height h over the plane and rho - r,
// whose squares add up to its squared distance from the circle. Local
// parameters: centre shifts along u, v, n; tilts of n towards u and v; radius.
class CircleProblem {
 public:
  using State = CircleState;
  CircleProblem(const PointBlock &block, double scale) : block_(block), scale_(scale) {}
  int Params() const { return 6; }
  double Scale() const { return scale_; }
  double StepLength(const double *d) const {
    const double tilt = scale_ * std::sqrt(d[3] * d[3] + d[4] * d[4]);
    return std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2] + tilt * tilt + d[5] * d[5]);
  }
  State Step(const State &s, const double *d) const {
    const Vec3 c = s.c + d[0] * s.u + d[1] * s.v + d[2] * s.n;
    return MakeCircle(c, Normalised(s.n + d[3] * s.u + d[4] * s.v), s.r + d[5]);
  }
  bool Evaluate(const State &s, NormalEquations &eq) const {
    eq.Clear(6);
    for (int i = 0; i < block_.size(); ++i) {
      double h, rho, nu, nv;
      Local(s, block_[i], h, rho, nu, nv);
      const double jh[6] = {0.0, 0.0, -1.0, rho * nu, rho * nv, 0.0};
      const double jr[6] = {-nu, -nv, 0.0, -h * nu, -h * nv, -1.0};
      eq.Add<6>(jh, h);
      eq.Add<6>(jr, rho - s.r);
    }
    eq.Symmetrise();
    return eq.Finite();
  }
  // Height over the plane, distance from the axis and the unit radial
  // direction in (u, v) of point p.
  static void Local(const State &s, const Vec3 &p, double &h, double &rho, double &nu, double &nv) {
    AxialCoordinates(s.c, s.u, s.v, s.n, p, h, rho, nu, nv);
  }

 private:
  const PointBlock &block_;
  double scale_;
};

}  // namespace

MetrologyStatus GaussianSphereFit(const CMatrix &points, CMatrix &centre, double &radius,
                                  GaussianFitInfo &info) {
  PointBlock block;
  MetrologyStatus status = block.Load(points, 4, 3);
  NormalEquations eq;
  SphereState state;
  int iterations = 0;
  if (status == MetrologyStatus::kConverged) {
    CMatrix c0, distances;
    double r0 = 0.0;
    SphereFit(points, c0, r0, distances);
    state = {VecOf(c0), r0};
    const SphereProblem problem(block, std::fmax(block.extent(), std::fabs(r0)));
    status = Minimise(problem, state, eq, iterations);
  }
  if (status != MetrologyStatus::kConverged && status != MetrologyStatus::kStepLimit) {
    centre = NanMatrix(3, 1);
    radius = std::numeric_limits<double>::quiet_NaN();
    FailInfo(status, points.GetRows() == 3 ? points.GetCols() : 0, 4, info);
    return status;
  }
  std::vector<double> residuals(static_cast<size_t>(block.size()));
  for (int i = 0; i < block.size(); ++i)
    residuals[i] = Norm(block[i] - state.c) - state.r;
  const double t[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  centre = ColumnOf(state.c);
  radius = state.r;
  FinishInfo(status, iterations, eq, residuals, t, 4, info);
  return status;
}

MetrologyStatus GaussianCircleFit(const CMatrix &points, CMatrix &centre, CMatrix &normal,
                                  double &radius, GaussianFitInfo &info) {
  PointBlock block;
  MetrologyStatus status = block.Load(points, 3, 2);
  NormalEquations eq;
  CircleState state;
  int iterations = 0;
  if (status == MetrologyStatus::kConverged) {
    CMatrix c0, n0, distances;
    double r0 = 0.0;
    CircleFit(points, c0, n0, r0, distances);
    state = MakeCircle(VecOf(c0), Normalised(VecOf(n0)), r0);
    const CircleProblem problem(block, std::fmax(block.extent(), std::fabs(r0)));
    status = Minimise(problem, state, eq, iterations);
  }
  if (status != MetrologyStatus::kConverged && status != MetrologyStatus::kStepLimit) {
    centre = NanMatrix(3, 1);
    normal = NanMatrix(3, 1);
    radius = std::numeric_limits<double>::quiet_NaN();
    FailInfo(status, points.GetRows() == 3 ? points.GetCols() : 0, 7, info);
    return status;
  }
  state = MakeCircle(state.c, Oriented(state.n), state.r);
  eq.Clear(6);
  CircleProblem(block, 1.0).Evaluate(state, eq);
  std::vector<double> residuals(static_cast<size_t>(block.size()));
  for (int i = 0; i < block.size(); ++i) {
    double h, rho, nu, nv;
    CircleProblem::Local(state, block[i], h, rho, nu, nv);
    const double d = rho - state.r;
    residuals[i] = std::copysign(std::sqrt(h * h + d * d), d);
  }
  const Vec3 &u = state.u, &v = state.v, &n = state.n;
  const double t[42] = {u.x, v.x, n.x, 0, 0, 0,   u.y, v.y, n.y, 0, 0, 0, u.z, v.z,
                        n.z, 0,   0,   0, 0, 0,   0,   u.x, v.x, 0, 0, 0, 0,   u.y,
                        v.y, 0,   0,   0, 0, u.z, v.z, 0,   0,   0, 0, 0, 0,   1};
  centre = ColumnOf(state.c);
  normal = ColumnOf(state.n);
  radius = state.r;
  FinishInfo(status, iterations, eq, residuals, t, 7, info);
  return status;
}
