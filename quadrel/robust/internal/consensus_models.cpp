// Hypotheses, distances and refits for each shape of sample consensus.
#include "quadrel/robust/internal/consensus_models.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/metrology/gaussian_cylinder_cone.h"

namespace {

// A sample is degenerate when the sine of the angle (plane, circle) or the
// normalised volume (sphere) it spans is below this: the model would rest on
// rounding errors.
constexpr double kFlatness = 1e-9;

double Dot(const double *a, const double *b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void Cross(const double *a, const double *b, double *out) {
  out[0] = a[1] * b[2] - a[2] * b[1];
  out[1] = a[2] * b[0] - a[0] * b[2];
  out[2] = a[0] * b[1] - a[1] * b[0];
}

bool AllFinite(const Hypothesis &h) {
  return std::isfinite(h.p[0]) && std::isfinite(h.p[1]) && std::isfinite(h.p[2]) &&
         std::isfinite(h.u[0]) && std::isfinite(h.u[1]) && std::isfinite(h.u[2]) &&
         std::isfinite(h.r);
}

// Sample point k less sample point 0.
void Offset(const PointColumns &s, int k, double *out) {
  out[0] = s.x[k] - s.x[0];
  out[1] = s.y[k] - s.y[0];
  out[2] = s.z[k] - s.z[0];
}

void SetPoint(const PointColumns &s, int k, double *out) {
  out[0] = s.x[k];
  out[1] = s.y[k];
  out[2] = s.z[k];
}

template <ConsensusShape S>
inline double Distance2(const Hypothesis &h, double x, double y, double z) {
  const double vx = x - h.p[0];
  const double vy = y - h.p[1];
  const double vz = z - h.p[2];
  if constexpr (S == ConsensusShape::kPlane) {
    const double a = vx * h.u[0] + vy * h.u[1] + vz * h.u[2];
    return a * a;
  } else if constexpr (S == ConsensusShape::kSphere) {
    const double e = std::sqrt(vx * vx + vy * vy + vz * vz) - h.r;
    return e * e;
  } else {
    // The part of v across the direction (line, cylinder) or within the plane
    // (circle): subtracting the projection keeps it accurate near the axis.
    const double a = vx * h.u[0] + vy * h.u[1] + vz * h.u[2];
    const double wx = vx - a * h.u[0];
    const double wy = vy - a * h.u[1];
    const double wz = vz - a * h.u[2];
    const double w2 = wx * wx + wy * wy + wz * wz;
    if constexpr (S == ConsensusShape::kLine) {
      return w2;
    } else if constexpr (S == ConsensusShape::kCylinder) {
      const double e = std::sqrt(w2) - h.r;
      return e * e;
    } else {
      const double e = std::sqrt(w2) - h.r;
      return a * a + e * e;
    }
  }
}

// The score of points begin .. end - 1; with Collect, the indices of the
// inliers go to out as well. The collecting loop has no branch: every index is
// written and kept only for an inlier, as inliers and outliers come in random
// order, which a branch would mispredict half of the time. Both loops add the
// same terms in the same order, so they give the same score.
template <ConsensusShape S, bool Collect>
RangeScore ScoreRangeOf(const Hypothesis &h, const PointColumns &c, std::int64_t begin,
                        std::int64_t end, double t2, std::int64_t *out) {
  RangeScore score;
  double sum = 0.0;
  std::int64_t count = 0;
  for (std::int64_t i = begin; i < end; ++i) {
    const double d2 = Distance2<S>(h, c.x[i], c.y[i], c.z[i]);
    if constexpr (Collect) out[count] = i;
    count += d2 <= t2 ? 1 : 0;
    sum += std::min(d2, t2);
  }
  score.sum = sum;
  score.count = count;
  return score;
}

// Calls f with the shape as a compile-time constant, so that each shape gets
// its own scoring loop with the distance inlined.
template <class F>
auto ForShape(ConsensusShape shape, F &&f) {
  using C = ConsensusShape;
  switch (shape) {
    case C::kLine:
      return f(std::integral_constant<C, C::kLine>());
    case C::kPlane:
      return f(std::integral_constant<C, C::kPlane>());
    case C::kCircle:
      return f(std::integral_constant<C, C::kCircle>());
    case C::kSphere:
      return f(std::integral_constant<C, C::kSphere>());
    case C::kCylinder:
      break;
  }
  return f(std::integral_constant<C, C::kCylinder>());
}

// The listed points as a 3 x k matrix, k = min(size, limit): entry
// j * size / k of the list for column j.
CMatrix Gather(const PointColumns &c, const std::vector<std::int64_t> &list, std::size_t limit) {
  const std::size_t size = list.size();
  const std::size_t k = limit > 0 && limit < size ? limit : size;
  CMatrix points(3, static_cast<int>(k));
  for (std::size_t j = 0; j < k; ++j) {
    const std::int64_t i = list[k == size ? j : j * size / k];
    const int column = static_cast<int>(j);
    points(0, column) = c.x[i];
    points(1, column) = c.y[i];
    points(2, column) = c.z[i];
  }
  return points;
}

void Read3(const CMatrix &m, double *out) {
  for (int k = 0; k < 3; ++k)
    out[k] = m(k, 0);
}

}  // namespace

int SampleSize(ConsensusShape shape) {
  switch (shape) {
    case ConsensusShape::kLine:
      return 2;
    case ConsensusShape::kPlane:
    case ConsensusShape::kCircle:
      return 3;
    case ConsensusShape::kSphere:
      return 4;
    case ConsensusShape::kCylinder:
      return 5;
  }
  return 0;
}

bool SolveSample(ConsensusShape shape, const PointColumns &s, Hypothesis &model) {
  Hypothesis h;
  SetPoint(s, 0, h.p);
  double u[3];
  Offset(s, 1, u);
  const double lu = std::sqrt(Dot(u, u));
  switch (shape) {
    case ConsensusShape::kLine: {
      const double scale = std::max({std::fabs(s.x[0]), std::fabs(s.y[0]), std::fabs(s.z[0]),
                                     std::fabs(s.x[1]), std::fabs(s.y[1]), std::fabs(s.z[1])});
      if (!(lu > 1e-12 * scale)) return false;
      for (int k = 0; k < 3; ++k)
        h.u[k] = u[k] / lu;
      break;
    }
    case ConsensusShape::kPlane:
    case ConsensusShape::kCircle: {
      double v[3], w[3];
      Offset(s, 2, v);
      Cross(u, v, w);
      const double lv = std::sqrt(Dot(v, v));
      const double lw = std::sqrt(Dot(w, w));
      if (!(lw > kFlatness * lu * lv)) return false;
      for (int k = 0; k < 3; ++k)
        h.u[k] = w[k] / lw;
      if (shape == ConsensusShape::kCircle) {
        // Circumcentre: a + (|v|^2 (w x u) - |u|^2 (w x v)) / (2 |w|^2).
        double wu[3], wv[3];
        Cross(w, u, wu);
        Cross(w, v, wv);
        const double scale = 2.0 * Dot(w, w);
        double y[3];
        for (int k = 0; k < 3; ++k) {
          y[k] = (Dot(v, v) * wu[k] - Dot(u, u) * wv[k]) / scale;
          h.p[k] += y[k];
        }
        h.r = std::sqrt(Dot(y, y));
      }
      break;
    }
    case ConsensusShape::kSphere: {
      double v[3], w[3], c23[3], c31[3], c12[3];
      Offset(s, 2, v);
      Offset(s, 3, w);
      Cross(v, w, c23);
      Cross(w, u, c31);
      Cross(u, v, c12);
      const double det = Dot(u, c23);
      if (!(std::fabs(det) > kFlatness * lu * std::sqrt(Dot(v, v)) * std::sqrt(Dot(w, w))))
        return false;
      // The centre c = a + y solves 2 q.y = |q|^2 for q = u, v, w (Cramer).
      double y[3];
      for (int k = 0; k < 3; ++k) {
        y[k] = (Dot(u, u) * c23[k] + Dot(v, v) * c31[k] + Dot(w, w) * c12[k]) / (2.0 * det);
        h.p[k] += y[k];
      }
      h.r = std::sqrt(Dot(y, y));
      break;
    }
    case ConsensusShape::kCylinder: {
      std::vector<std::int64_t> all(static_cast<std::size_t>(s.n));
      for (std::int64_t k = 0; k < s.n; ++k)
        all[static_cast<std::size_t>(k)] = k;
      if (!RefitInliers(shape, s, all, h)) return false;
      break;
    }
  }
  if (!AllFinite(h)) return false;
  model = h;
  return true;
}

double SquaredDistance(ConsensusShape shape, const Hypothesis &h, double x, double y, double z) {
  return ForShape(shape, [&](auto s) { return Distance2<s()>(h, x, y, z); });
}

RangeScore ScoreRange(ConsensusShape shape, const Hypothesis &h, const PointColumns &c,
                      std::int64_t begin, std::int64_t end, double t2) {
  return ForShape(shape,
                  [&](auto s) { return ScoreRangeOf<s(), false>(h, c, begin, end, t2, nullptr); });
}

RangeScore CollectRange(ConsensusShape shape, const Hypothesis &h, const PointColumns &c,
                        std::int64_t begin, std::int64_t end, double t2, std::int64_t *out) {
  return ForShape(shape,
                  [&](auto s) { return ScoreRangeOf<s(), true>(h, c, begin, end, t2, out); });
}

bool RefitInliers(ConsensusShape shape, const PointColumns &c,
                  const std::vector<std::int64_t> &inliers, Hypothesis &model, std::size_t limit) {
  const std::size_t k = inliers.size();
  if (k < static_cast<std::size_t>(SampleSize(shape))) return false;
  const CMatrix points = Gather(c, inliers, limit);
  CMatrix point, direction, residuals;
  Hypothesis h;
  switch (shape) {
    case ConsensusShape::kLine:
      LineFit(points, point, direction, residuals);
      break;
    case ConsensusShape::kPlane:
      PlaneFit(points, point, direction, residuals);
      break;
    case ConsensusShape::kCircle:
      CircleFit(points, point, direction, h.r, residuals);
      break;
    case ConsensusShape::kSphere:
      SphereFit(points, point, h.r, residuals);
      break;
    case ConsensusShape::kCylinder: {
      GaussianFitInfo info;
      const MetrologyStatus status = GaussianCylinderFit(points, point, direction, h.r, info);
      if (status != MetrologyStatus::kConverged && status != MetrologyStatus::kStepLimit)
        return false;
      break;
    }
  }
  Read3(point, h.p);
  if (shape != ConsensusShape::kSphere) Read3(direction, h.u);
  if (!AllFinite(h)) return false;
  model = h;
  return true;
}

ConsensusModel ToConsensusModel(ConsensusShape shape, const Hypothesis &h, bool valid) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  ConsensusModel m;
  m.point = CMatrix(3, 1);
  for (int k = 0; k < 3; ++k)
    m.point(k, 0) = valid ? h.p[k] : nan;
  if (shape == ConsensusShape::kSphere) {
    m.direction = CMatrix(0, 0);
  } else {
    m.direction = CMatrix(3, 1);
    for (int k = 0; k < 3; ++k)
      m.direction(k, 0) = valid ? h.u[k] : nan;
  }
  const bool round = shape == ConsensusShape::kCircle || shape == ConsensusShape::kSphere ||
                     shape == ConsensusShape::kCylinder;
  m.radius = !valid ? nan : round ? h.r : 0.0;
  return m;
}
