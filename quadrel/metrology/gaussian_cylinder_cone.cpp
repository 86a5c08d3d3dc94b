#include "quadrel/metrology/gaussian_cylinder_cone.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "quadrel/metrology/internal/gauss_newton.h"
#include "quadrel/metrology/internal/point_block.h"

namespace {

// A cone about the axis through a along w; the cylinder is the cone with
// alpha = 0. r is the radius at a.
struct AxisState {
  Vec3 a, w, u, v;
  double alpha = 0.0, r = 0.0;
};

AxisState MakeAxis(const Vec3 &a, const Vec3 &w, double alpha, double r) {
  AxisState s{a, w, {}, {}, alpha, r};
  Complement(w, s.u, s.v);
  return s;
}

// Orthogonal distances from the cone, positive outside, of the points of
// block; the cosine and sine of the half-angle are taken once.
template <class Use>
void AxisDistances(const PointBlock &block, const AxisState &s, Use &&use) {
  const double ca = std::cos(s.alpha), sa = std::sin(s.alpha);
  for (int i = 0; i < block.size(); ++i) {
    double t, rho, nu, nv;
    AxialCoordinates(s.a, s.u, s.v, s.w, block[i], t, rho, nu, nv);
    use(i, (rho - s.r) * ca - t * sa, t, rho, nu, nv);
  }
}

// Local parameters: axis shifts along u and v, tilts of w towards u and v,
// then (cone only) the half-angle, then the radius at the axis point. After
// each step the axis point moves to the foot of the centroid, so that tilts
// turn the axis about the middle of the data.
class AxisProblem {
 public:
  using State = AxisState;
  AxisProblem(const PointBlock &block, bool cone, double scale)
      : block_(block), cone_(cone), scale_(scale) {}
  int Params() const { return cone_ ? 6 : 5; }
  double Scale() const { return scale_; }
  double StepLength(const double *d) const {
    const double tilt = scale_ * std::sqrt(d[2] * d[2] + d[3] * d[3]);
    const double angle = cone_ ? scale_ * d[4] : 0.0;
    const double dr = d[Params() - 1];
    return std::sqrt(d[0] * d[0] + d[1] * d[1] + tilt * tilt + angle * angle + dr * dr);
  }
  State Step(const State &s, const double *d) const {
    const Vec3 a = s.a + d[0] * s.u + d[1] * s.v;
    const Vec3 w = Normalised(s.w + d[2] * s.u + d[3] * s.v);
    const double alpha = cone_ ? s.alpha + d[4] : 0.0;
    const double slide = Dot(block_.centroid() - a, w);
    return MakeAxis(a + slide * w, w, alpha, s.r + d[Params() - 1] + slide * std::tan(alpha));
  }
  bool Evaluate(const State &s, NormalEquations &eq) const {
    eq.Clear(Params());
    const double ca = std::cos(s.alpha), sa = std::sin(s.alpha);
    AxisDistances(block_, s, [&](int, double d, double t, double rho, double nu, double nv) {
      const double lever = t * ca + rho * sa;
      if (cone_) {
        const double j[6] = {
            -nu * ca, -nv * ca, -lever * nu, -lever * nv, (s.r - rho) * sa - t * ca, -ca};
        eq.Add<6>(j, d);
      } else {
        const double j[5] = {-nu, -nv, -t * nu, -t * nv, -1.0};
        eq.Add<5>(j, d);
      }
    });
    eq.Symmetrise();
    return eq.Finite();
  }

 private:
  const PointBlock &block_;
  bool cone_;
  double scale_;
};

// The algebraic start along the axis w through the centroid: the points seen
// along w satisfy x^2 + y^2 = A x + B y + C (+ D t + E t^2 for a cone), solved
// by linear least squares in coordinates scaled by the extent. False when the
// solve fails or gives no real radius.
bool AlgebraicStart(const PointBlock &block, const Vec3 &w, bool cone, AxisState &start) {
  const int p = cone ? 5 : 3;
  const double scale = block.extent();
  AxisState frame = MakeAxis(block.centroid(), w, 0.0, 0.0);
  double ata[25] = {}, atb[5] = {}, x[5];
  for (int i = 0; i < block.size(); ++i) {
    const Vec3 q = (1.0 / scale) * (block[i] - frame.a);
    const double qu = Dot(q, frame.u), qv = Dot(q, frame.v), t = Dot(q, w);
    const double row[5] = {qu, qv, 1.0, t, t * t};
    const double b = qu * qu + qv * qv;
    for (int r = 0; r < p; ++r) {
      for (int c = 0; c < p; ++c)
        ata[r * p + c] += row[r] * row[c];
      atb[r] += row[r] * b;
    }
  }
  if (!CholeskySolve(ata, p, atb, x)) return false;
  const double cu = 0.5 * x[0], cv = 0.5 * x[1];
  const double r2 = x[2] + cu * cu + cv * cv;
  if (!(r2 > 0.0)) return false;
  const double r = std::sqrt(r2);
  const double alpha = cone ? std::atan(0.5 * x[3] / r) : 0.0;
  start = MakeAxis(frame.a + scale * (cu * frame.u + cv * frame.v), w, alpha, scale * r);
  return true;
}

double SumOfSquares(const PointBlock &block, const AxisState &s) {
  double sum = 0.0;
  AxisDistances(block, s, [&](int, double d, double, double, double, double) { sum += d * d; });
  return sum;
}

// The start of the refinement, from several: 13 trial axes (the principal
// directions of the scatter, the diagonals between each two and among all
// three) each give an algebraic start, judged by its sum of squares; the three
// best are refined on a sample of about 2000 points, and the one that ends
// lowest is the start for all points. Principal directions alone mislead when
// two spreads are about equal, as on a cylinder about as long as it is wide.
MetrologyStatus BestStart(const PointBlock &block, bool cone, AxisState &best) {
  const int stride = std::max(1, block.size() / 2000);
  PointBlock sample;
  sample.TakeEvery(block, stride);
  Vec3 e[3];
  sample.Spread(e);
  const double h = std::sqrt(0.5), d = std::sqrt(1.0 / 3.0);
  const Vec3 trials[13] = {e[0],
                           e[1],
                           e[2],
                           h * (e[0] + e[1]),
                           h * (e[0] - e[1]),
                           h * (e[0] + e[2]),
                           h * (e[0] - e[2]),
                           h * (e[1] + e[2]),
                           h * (e[1] - e[2]),
                           d * (e[0] + e[1] + e[2]),
                           d * (e[0] + e[1] - e[2]),
                           d * (e[0] - e[1] + e[2]),
                           d * (e[0] - e[1] - e[2])};
  struct Start {
    double cost;
    AxisState state;
  };
  std::vector<Start> starts;
  for (const Vec3 &w : trials) {
    AxisState start;
    if (AlgebraicStart(sample, w, cone, start))
      starts.push_back({SumOfSquares(sample, start), start});
  }
  if (starts.empty()) return MetrologyStatus::kDegenerate;
  std::sort(starts.begin(), starts.end(),
            [](const Start &a, const Start &b) { return a.cost < b.cost; });
  double lowest = std::numeric_limits<double>::infinity();
  const AxisProblem problem(sample, cone, sample.extent());
  for (size_t k = 0; k < starts.size() && k < 3; ++k) {
    AxisState state = starts[k].state;
    NormalEquations eq;
    int iterations = 0;
    const MetrologyStatus status = Minimise(problem, state, eq, iterations);
    if ((status == MetrologyStatus::kConverged || status == MetrologyStatus::kStepLimit) &&
        eq.cost < lowest) {
      lowest = eq.cost;
      best = state;
    }
  }
  return lowest < std::numeric_limits<double>::infinity() ? MetrologyStatus::kConverged
                                                          : MetrologyStatus::kDegenerate;
}

// Shared by both fits: start, refine, and write the outputs.
MetrologyStatus AxisFit(const CMatrix &points, bool cone, CMatrix &axisPoint, CMatrix &direction,
                        double &halfAngle, double &radius, GaussianFitInfo &info) {
  const int q = cone ? 8 : 7;
  PointBlock block;
  MetrologyStatus status = block.Load(points, cone ? 6 : 5, cone ? 3 : 2);
  AxisState state;
  NormalEquations eq;
  int iterations = 0;
  if (status == MetrologyStatus::kConverged) {
    status = BestStart(block, cone, state);
  }
  if (status == MetrologyStatus::kConverged) {
    const AxisProblem problem(block, cone, std::fmax(block.extent(), std::fabs(state.r)));
    status = Minimise(problem, state, eq, iterations);
  }
  if (status != MetrologyStatus::kConverged && status != MetrologyStatus::kStepLimit) {
    axisPoint = NanMatrix(3, 1);
    direction = NanMatrix(3, 1);
    halfAngle = radius = std::numeric_limits<double>::quiet_NaN();
    FailInfo(status, points.GetRows() == 3 ? points.GetCols() : 0, q, info);
    return status;
  }
  // A cone opens along its direction; a cylinder's direction follows the
  // orientation rule. Neither flip changes the surface, nor the normal
  // equations, only the sign of the direction's rows in the covariance map.
  const bool flip = cone ? state.alpha < 0.0 : Dot(Oriented(state.w), state.w) < 0.0;
  std::vector<double> residuals(static_cast<size_t>(block.size()));
  AxisDistances(block, state,
                [&](int i, double d, double, double, double, double) { residuals[i] = d; });
  const int p = cone ? 6 : 5;
  double t[8 * 6] = {};
  const Vec3 &u = state.u, &v = state.v;
  const double uc[3] = {u.x, u.y, u.z}, vc[3] = {v.x, v.y, v.z};
  const double turn = flip ? -1.0 : 1.0;
  for (int k = 0; k < 3; ++k) {
    t[k * p + 0] = uc[k];
    t[k * p + 1] = vc[k];
    t[(3 + k) * p + 2] = turn * uc[k];
    t[(3 + k) * p + 3] = turn * vc[k];
  }
  if (cone) t[6 * p + 4] = turn;
  t[(q - 1) * p + p - 1] = 1.0;
  if (flip) state = MakeAxis(state.a, -1.0 * state.w, -state.alpha, state.r);
  axisPoint = ColumnOf(state.a);
  direction = ColumnOf(state.w);
  halfAngle = state.alpha;
  radius = state.r;
  FinishInfo(status, iterations, eq, residuals, t, q, info);
  return status;
}

}  // namespace

MetrologyStatus GaussianCylinderFit(const CMatrix &points, CMatrix &axisPoint, CMatrix &direction,
                                    double &radius, GaussianFitInfo &info) {
  double halfAngle = 0.0;
  return AxisFit(points, false, axisPoint, direction, halfAngle, radius, info);
}

MetrologyStatus GaussianConeFit(const CMatrix &points, CMatrix &axisPoint, CMatrix &direction,
                                double &halfAngle, double &radius, GaussianFitInfo &info) {
  return AxisFit(points, true, axisPoint, direction, halfAngle, radius, info);
}
