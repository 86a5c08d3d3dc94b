#include "quadrel/metrology/gaussian_torus.h"

#include <cmath>
#include <limits>
#include <vector>

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/metrology/internal/gauss_newton.h"
#include "quadrel/metrology/internal/point_block.h"

namespace {

struct TorusState {
  Vec3 c, w, u, v;
  double major = 0.0, minor = 0.0;
};

TorusState MakeTorus(const Vec3 &c, const Vec3 &w, double major, double minor) {
  TorusState s{c, w, {}, {}, major, minor};
  Complement(w, s.u, s.v);
  return s;
}

// Distances of the points from the tube, with what the Jacobian needs: the
// unit direction (mr, mh) from the middle circle to the point in its
// half-plane, and the radial direction (nu, nv) about the axis.
template <class Use>
void TorusDistances(const PointBlock &block, const TorusState &s, Use &&use) {
  for (int i = 0; i < block.size(); ++i) {
    double h, rho, nu, nv;
    AxialCoordinates(s.c, s.u, s.v, s.w, block[i], h, rho, nu, nv);
    const double dr = rho - s.major;
    const double tube = std::sqrt(dr * dr + h * h);
    const double inv = tube > 0.0 ? 1.0 / tube : 0.0;
    use(i, tube - s.minor, h, rho, nu, nv, dr * inv, h * inv);
  }
}

// Local parameters: centre shifts along u, v, w; tilts of w towards u and v;
// major radius; minor radius.
class TorusProblem {
 public:
  using State = TorusState;
  TorusProblem(const PointBlock &block, double scale) : block_(block), scale_(scale) {}
  int Params() const { return 7; }
  double Scale() const { return scale_; }
  double StepLength(const double *d) const {
    const double tilt = scale_ * std::sqrt(d[3] * d[3] + d[4] * d[4]);
    return std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2] + tilt * tilt + d[5] * d[5] +
                     d[6] * d[6]);
  }
  State Step(const State &s, const double *d) const {
    const Vec3 c = s.c + d[0] * s.u + d[1] * s.v + d[2] * s.w;
    return MakeTorus(c, Normalised(s.w + d[3] * s.u + d[4] * s.v), s.major + d[5], s.minor + d[6]);
  }
  bool Evaluate(const State &s, NormalEquations &eq) const {
    eq.Clear(7);
    TorusDistances(
        block_, s,
        [&](int, double d, double h, double rho, double nu, double nv, double mr, double mh) {
          const double lever = mh * rho - mr * h;
          const double j[7] = {-mr * nu, -mr * nv, -mh, lever * nu, lever * nv, -mr, -1.0};
          eq.Add<7>(j, d);
        });
    eq.Symmetrise();
    return eq.Finite();
  }

 private:
  const PointBlock &block_;
  double scale_;
};

}  // namespace

MetrologyStatus GaussianTorusFit(const CMatrix &points, CMatrix &centre, CMatrix &axis,
                                 double &majorRadius, double &minorRadius, GaussianFitInfo &info) {
  PointBlock block;
  MetrologyStatus status = block.Load(points, 7, 2);
  TorusState state;
  NormalEquations eq;
  int iterations = 0;
  if (status == MetrologyStatus::kConverged) {
    CMatrix c0, n0, distances;
    double r0 = 0.0;
    CircleFit(points, c0, n0, r0, distances);
    state = MakeTorus(VecOf(c0), Normalised(VecOf(n0)), r0, 0.0);
    double sum = 0.0;
    TorusDistances(
        block, state,
        [&](int, double d, double, double, double, double, double, double) { sum += d; });
    state.minor = sum / block.size();
    const TorusProblem problem(block, std::fmax(block.extent(), std::fabs(r0)));
    status = Minimise(problem, state, eq, iterations);
  }
  if (status != MetrologyStatus::kConverged && status != MetrologyStatus::kStepLimit) {
    centre = NanMatrix(3, 1);
    axis = NanMatrix(3, 1);
    majorRadius = minorRadius = std::numeric_limits<double>::quiet_NaN();
    FailInfo(status, points.GetRows() == 3 ? points.GetCols() : 0, 8, info);
    return status;
  }
  std::vector<double> residuals(static_cast<size_t>(block.size()));
  TorusDistances(
      block, state,
      [&](int i, double d, double, double, double, double, double, double) { residuals[i] = d; });
  // Turning the axis over changes no point of the torus, only the sign of the
  // axis rows of the covariance map.
  const double turn = Dot(Oriented(state.w), state.w) < 0.0 ? -1.0 : 1.0;
  const Vec3 &u = state.u, &v = state.v, &w = state.w;
  const double uc[3] = {u.x, u.y, u.z}, vc[3] = {v.x, v.y, v.z}, wc[3] = {w.x, w.y, w.z};
  double t[8 * 7] = {};
  for (int k = 0; k < 3; ++k) {
    t[k * 7 + 0] = uc[k];
    t[k * 7 + 1] = vc[k];
    t[k * 7 + 2] = wc[k];
    t[(3 + k) * 7 + 3] = turn * uc[k];
    t[(3 + k) * 7 + 4] = turn * vc[k];
  }
  t[6 * 7 + 5] = 1.0;
  t[7 * 7 + 6] = 1.0;
  centre = ColumnOf(state.c);
  axis = ColumnOf(turn * state.w);
  majorRadius = state.major;
  minorRadius = state.minor;
  FinishInfo(status, iterations, eq, residuals, t, 8, info);
  return status;
}
