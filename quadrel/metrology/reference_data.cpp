#include "quadrel/metrology/reference_data.h"

#include <cmath>
#include <vector>

#include "quadrel/metrology/internal/point_block.h"
#include "quadrel/metrology/internal/vec3.h"

namespace {

constexpr double kPi = 3.141592653589793;

// xorshift64*: the same numbers on every platform.
class Stream {
 public:
  explicit Stream(std::uint64_t seed) : state_(seed ? seed : 0x9e3779b97f4a7c15ULL) {}
  double Uniform(double lo, double hi) {
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    const std::uint64_t bits = (state_ * 0x2545F4914F6CDD1DULL) >> 11;
    return lo + (hi - lo) * (static_cast<double>(bits) * (1.0 / 9007199254740992.0));
  }

 private:
  std::uint64_t state_;
};

// Removes from e its components along the columns (each of length m):
// modified Gram-Schmidt on the columns, then two projections of e, which
// leaves e orthogonal to them to rounding. Returns false when the columns are
// dependent or leave e nothing.
bool ProjectOut(std::vector<std::vector<double>> columns, std::vector<double> &e) {
  const size_t m = e.size();
  for (size_t k = 0; k < columns.size(); ++k) {
    for (int pass = 0; pass < 2; ++pass) {
      for (size_t j = 0; j < k; ++j) {
        double dot = 0.0;
        for (size_t i = 0; i < m; ++i)
          dot += columns[j][i] * columns[k][i];
        for (size_t i = 0; i < m; ++i)
          columns[k][i] -= dot * columns[j][i];
      }
    }
    double norm = 0.0;
    for (size_t i = 0; i < m; ++i)
      norm += columns[k][i] * columns[k][i];
    norm = std::sqrt(norm);
    if (!(norm > 1e-12 * std::sqrt(static_cast<double>(m)))) return false;
    for (size_t i = 0; i < m; ++i)
      columns[k][i] /= norm;
  }
  for (int pass = 0; pass < 2; ++pass) {
    for (const auto &q : columns) {
      double dot = 0.0;
      for (size_t i = 0; i < m; ++i)
        dot += q[i] * e[i];
      for (size_t i = 0; i < m; ++i)
        e[i] -= dot * q[i];
    }
  }
  double largest = 0.0;
  for (double v : e)
    largest = std::fmax(largest, std::fabs(v));
  return largest > 0.0;
}

}  // namespace

MetrologyStatus MakeReferencePoints(const NominalFeature &nominal,
                                    const ReferenceSampling &sampling, CMatrix &points,
                                    CMatrix &deviations) {
  const int n = sampling.count;
  const FeatureKind kind = nominal.kind;
  const bool twoPerPoint = kind == FeatureKind::kLine || kind == FeatureKind::kCircle;
  const bool hasRadius = kind != FeatureKind::kLine && kind != FeatureKind::kPlane;
  const int params[] = {4, 3, 6, 4, 5, 6, 7};
  const int kindIndex = static_cast<int>(kind);
  bool valid = kindIndex >= 0 && kindIndex <= 6 && nominal.position.GetRows() == 3 &&
               nominal.direction.GetRows() == 3 && n > 0 && sampling.deviation >= 0.0 &&
               sampling.length >= 0.0 && std::isfinite(sampling.arc + sampling.cap);
  if (valid) valid = (twoPerPoint ? 2 * n : n) > params[kindIndex] + 1;
  Vec3 a, w;
  if (valid) {
    a = VecOf(nominal.position);
    w = VecOf(nominal.direction);
    valid = std::isfinite(Dot(a, a)) && std::fabs(Norm(w) - 1.0) < 1e-12 &&
            (!hasRadius || (nominal.radius > 0.0 && sampling.deviation < 0.5 * nominal.radius));
  }
  const double alpha = nominal.halfAngle;
  if (valid && kind == FeatureKind::kCone)
    valid = alpha > 0.0 && alpha < 1.5 &&
            nominal.radius - 0.5 * sampling.length * std::tan(alpha) > 2.0 * sampling.deviation;
  if (valid && kind == FeatureKind::kTorus)
    valid = nominal.minorRadius > 2.0 * sampling.deviation && nominal.minorRadius < nominal.radius;
  if (!valid) {
    points = CMatrix(3, 0);
    deviations = CMatrix(0, 1);
    return MetrologyStatus::kBadShape;
  }

  Vec3 u, v;
  Complement(w, u, v);
  Stream random(sampling.seed);
  const double r = nominal.radius;
  // Per point: the undisplaced foot, the one or two unit normals along which it
  // moves, and the Jacobian rows of the distances there.
  std::vector<Vec3> foot(static_cast<size_t>(n)), normalA(static_cast<size_t>(n)),
      normalB(static_cast<size_t>(n));
  const int m = twoPerPoint ? 2 * n : n;
  std::vector<std::vector<double>> columns(static_cast<size_t>(params[kindIndex]),
                                           std::vector<double>(static_cast<size_t>(m), 0.0));
  for (int i = 0; i < n; ++i) {
    const double t = random.Uniform(-0.5, 0.5) * sampling.length;
    const double phi = random.Uniform(-0.5, 0.5) * sampling.arc;
    const Vec3 radial = std::cos(phi) * u + std::sin(phi) * v;
    const double nu = std::cos(phi), nv = std::sin(phi);
    switch (kind) {
      case FeatureKind::kLine:
        foot[i] = a + t * w;
        normalA[i] = u;
        normalB[i] = v;
        columns[0][2 * i] = 1.0;
        columns[1][2 * i + 1] = 1.0;
        columns[2][2 * i] = t;
        columns[3][2 * i + 1] = t;
        break;
      case FeatureKind::kPlane: {
        const double s = random.Uniform(-0.5, 0.5) * sampling.length;
        foot[i] = a + t * u + s * v;
        normalA[i] = w;
        columns[0][i] = 1.0;
        columns[1][i] = t;
        columns[2][i] = s;
        break;
      }
      case FeatureKind::kCircle:
        foot[i] = a + r * radial;
        normalA[i] = w;
        normalB[i] = radial;
        columns[0][2 * i] = 1.0;
        columns[1][2 * i] = nu;
        columns[2][2 * i] = nv;
        columns[3][2 * i + 1] = nu;
        columns[4][2 * i + 1] = nv;
        columns[5][2 * i + 1] = 1.0;
        break;
      case FeatureKind::kSphere: {
        const double c = random.Uniform(std::cos(sampling.cap), 1.0);
        const double s = std::sqrt(std::fmax(0.0, 1.0 - c * c));
        const double az = random.Uniform(-kPi, kPi);
        const Vec3 dir = c * w + (s * std::cos(az)) * u + (s * std::sin(az)) * v;
        foot[i] = a + r * dir;
        normalA[i] = dir;
        columns[0][i] = dir.x;
        columns[1][i] = dir.y;
        columns[2][i] = dir.z;
        columns[3][i] = 1.0;
        break;
      }
      case FeatureKind::kCylinder:
        foot[i] = a + t * w + r * radial;
        normalA[i] = radial;
        columns[0][i] = nu;
        columns[1][i] = nv;
        columns[2][i] = t * nu;
        columns[3][i] = t * nv;
        columns[4][i] = 1.0;
        break;
      case FeatureKind::kCone: {
        const double rho = r + t * std::tan(alpha);
        foot[i] = a + t * w + rho * radial;
        normalA[i] = std::cos(alpha) * radial - std::sin(alpha) * w;
        const double lever = t * std::cos(alpha) + rho * std::sin(alpha);
        columns[0][i] = nu;
        columns[1][i] = nv;
        columns[2][i] = lever * nu;
        columns[3][i] = lever * nv;
        columns[4][i] = t;
        columns[5][i] = 1.0;
        break;
      }
      case FeatureKind::kTorus: {
        const double theta = random.Uniform(-kPi, kPi);
        const double ct = std::cos(theta), st = std::sin(theta);
        foot[i] = a + (r + nominal.minorRadius * ct) * radial + (nominal.minorRadius * st) * w;
        normalA[i] = ct * radial + st * w;
        columns[0][i] = ct * nu;
        columns[1][i] = ct * nv;
        columns[2][i] = st;
        columns[3][i] = st * nu;
        columns[4][i] = st * nv;
        columns[5][i] = ct;
        columns[6][i] = 1.0;
        break;
      }
    }
  }
  std::vector<double> e(static_cast<size_t>(m));
  for (double &value : e)
    value = random.Uniform(-1.0, 1.0);
  if (!ProjectOut(columns, e)) {
    points = CMatrix(3, 0);
    deviations = CMatrix(0, 1);
    return MetrologyStatus::kBadShape;
  }
  double largest = 0.0;
  for (double value : e)
    largest = std::fmax(largest, std::fabs(value));
  const double factor = sampling.deviation / largest;
  for (double &value : e)
    value *= factor;

  points = CMatrix(3, n);
  deviations = CMatrix(n, twoPerPoint ? 2 : 1);
  for (int i = 0; i < n; ++i) {
    Vec3 p;
    if (twoPerPoint) {
      p = foot[i] + e[2 * i] * normalA[i] + e[2 * i + 1] * normalB[i];
      deviations(i, 0) = e[2 * i];
      deviations(i, 1) = e[2 * i + 1];
    } else {
      p = foot[i] + e[i] * normalA[i];
      deviations(i, 0) = e[i];
    }
    points(0, i) = p.x;
    points(1, i) = p.y;
    points(2, i) = p.z;
  }
  return MetrologyStatus::kConverged;
}
