#include "quadrel/metrology/internal/zone_search.h"

#include <limits>

#include "quadrel/metrology/gaussian_circle_sphere.h"
#include "quadrel/metrology/internal/point_block.h"

namespace {

// Distances from a free centre, in two dimensions (points seen in the plane of
// a circle) or three. The parameters are the centre's coordinates.
struct CentreState {
  double c[3] = {0.0, 0.0, 0.0};
};

class CentreModel {
 public:
  using State = CentreState;
  CentreModel(const std::vector<double> *coordinates, int dimension, double scale)
      : coordinates_(coordinates), dimension_(dimension), scale_(scale) {}
  int Params() const { return dimension_; }
  double Scale() const { return scale_; }
  State Step(const State &s, const double *d) const {
    State next = s;
    for (int j = 0; j < dimension_; ++j)
      next.c[j] += d[j];
    return next;
  }
  void Deviations(const State &s, double *e, double *g) const {
    const size_t n = coordinates_[0].size();
    for (size_t i = 0; i < n; ++i) {
      double q[3], sum = 0.0;
      for (int j = 0; j < dimension_; ++j) {
        q[j] = coordinates_[j][i] - s.c[j];
        sum += q[j] * q[j];
      }
      const double rho = std::sqrt(sum);
      const double inv = rho > 0.0 ? 1.0 / rho : 0.0;
      e[i] = rho;
      for (int j = 0; j < dimension_; ++j)
        g[i * dimension_ + j] = -q[j] * inv;
    }
  }

 private:
  const std::vector<double> *coordinates_;
  int dimension_;
  double scale_;
};

}  // namespace

void FillZoneInfo(const ZoneOutcome &out, double width, double reference, ZoneInfo &info) {
  info.status = out.status;
  info.iterations = out.iterations;
  info.width = width;
  std::vector<double> deviations(out.e);
  for (double &value : deviations)
    value -= reference;
  info.deviations = ColumnOf(deviations);
  std::vector<double> contacts(out.contacts.begin(), out.contacts.end());
  std::vector<double> sides(out.sides.begin(), out.sides.end());
  info.contacts = ColumnOf(contacts);
  info.sides = ColumnOf(sides);
}

void FailZoneInfo(MetrologyStatus status, int n, ZoneInfo &info) {
  info.status = status;
  info.iterations = 0;
  info.width = std::numeric_limits<double>::quiet_NaN();
  info.deviations = n > 0 ? NanMatrix(n, 1) : CMatrix(0, 1);
  info.contacts = CMatrix(0, 1);
  info.sides = CMatrix(0, 1);
}

MetrologyStatus CentreZone(const CMatrix &points, bool circle, ZoneKind kind, CMatrix &centre,
                           CMatrix *normal, double &radius, ZoneInfo &info) {
  // The Gaussian feature gives the plane of a circle and the start of the
  // centre; its status covers the checks of the input.
  CMatrix c0, n0;
  double r0 = 0.0;
  GaussianFitInfo gaussian;
  const MetrologyStatus status = circle ? GaussianCircleFit(points, c0, n0, r0, gaussian)
                                        : GaussianSphereFit(points, c0, r0, gaussian);
  if (status != MetrologyStatus::kConverged && status != MetrologyStatus::kStepLimit) {
    centre = NanMatrix(3, 1);
    if (normal) *normal = NanMatrix(3, 1);
    radius = std::numeric_limits<double>::quiet_NaN();
    FailZoneInfo(status, points.GetRows() == 3 ? points.GetCols() : 0, info);
    return status;
  }
  PointBlock block;
  block.Load(points, 0);
  const Vec3 origin{c0(0, 0), c0(1, 0), c0(2, 0)};
  Vec3 u{1, 0, 0}, v{0, 1, 0}, w{0, 0, 1};
  if (circle) {
    w = {n0(0, 0), n0(1, 0), n0(2, 0)};
    Complement(w, u, v);
  }
  // Coordinates relative to the Gaussian centre, in the frame (u, v, w); a
  // circle's points are seen in its plane.
  std::vector<double> coordinates[3];
  const int n = block.size();
  for (int j = 0; j < 3; ++j)
    coordinates[j].resize(static_cast<size_t>(n));
  for (int i = 0; i < n; ++i) {
    const Vec3 q = block[i] - origin;
    coordinates[0][i] = Dot(q, u);
    coordinates[1][i] = Dot(q, v);
    coordinates[2][i] = Dot(q, w);
  }
  const CentreModel model(coordinates, circle ? 2 : 3, std::fabs(r0));
  CentreState state;
  const ZoneOutcome out = SearchZone(model, state, kind, n);
  const Vec3 found = origin + state.c[0] * u + state.c[1] * v + state.c[2] * w;
  centre = ColumnOf(found);
  if (normal) *normal = ColumnOf(Oriented(w));
  radius = kind == ZoneKind::kMinimumZone
               ? 0.5 * (out.lower + out.upper)
               : (kind == ZoneKind::kCircumscribed ? out.upper : out.lower);
  FillZoneInfo(out, out.upper - out.lower, radius, info);
  return info.status;
}
