#include "quadrel/metrology/minimum_zone.h"

#include <cmath>
#include <limits>

#include "quadrel/metrology/gaussian_line_plane.h"
#include "quadrel/metrology/internal/point_block.h"
#include "quadrel/metrology/internal/zone_search.h"

namespace {

struct FrameState {
  Vec3 a, w, u, v;
};

FrameState MakeFrame(const Vec3 &a, const Vec3 &w) {
  FrameState s{a, w, {}, {}};
  Complement(w, s.u, s.v);
  return s;
}

// Signed distances from the plane through the centroid normal to w. The
// parameters tilt w towards u and v, in length units over the scale; the zone
// bounds U and L take up any offset, so the plane needs no shift.
class PlaneModel {
 public:
  using State = FrameState;
  PlaneModel(const PointBlock &block, double scale) : block_(block), scale_(scale) {}
  int Params() const { return 2; }
  double Scale() const { return scale_; }
  State Step(const State &s, const double *d) const {
    return MakeFrame(s.a, Normalised(s.w + (d[0] / scale_) * s.u + (d[1] / scale_) * s.v));
  }
  void Deviations(const State &s, double *e, double *g) const {
    for (int i = 0; i < block_.size(); ++i) {
      const Vec3 q = block_[i] - s.a;
      e[i] = Dot(q, s.w);
      g[2 * i] = Dot(q, s.u) / scale_;
      g[2 * i + 1] = Dot(q, s.v) / scale_;
    }
  }

 private:
  const PointBlock &block_;
  double scale_;
};

// Distances from the axis through a along w. Parameters: shifts of the axis
// along u and v, and tilts of w towards them in length units over the scale;
// after each step the axis point moves to the foot of the centroid.
class AxisModel {
 public:
  using State = FrameState;
  AxisModel(const PointBlock &block, double scale) : block_(block), scale_(scale) {}
  int Params() const { return 4; }
  double Scale() const { return scale_; }
  State Step(const State &s, const double *d) const {
    const Vec3 a = s.a + d[0] * s.u + d[1] * s.v;
    const Vec3 w = Normalised(s.w + (d[2] / scale_) * s.u + (d[3] / scale_) * s.v);
    return MakeFrame(a + Dot(block_.centroid() - a, w) * w, w);
  }
  void Deviations(const State &s, double *e, double *g) const {
    for (int i = 0; i < block_.size(); ++i) {
      double t, rho, nu, nv;
      AxialCoordinates(s.a, s.u, s.v, s.w, block_[i], t, rho, nu, nv);
      e[i] = rho;
      const double lever = t / scale_;
      const double row[4] = {-nu, -nv, -lever * nu, -lever * nv};
      for (int j = 0; j < 4; ++j)
        g[4 * i + j] = row[j];
    }
  }

 private:
  const PointBlock &block_;
  double scale_;
};

// Flatness and straightness: the Gaussian plane or line starts the search.
MetrologyStatus FrameZone(const CMatrix &points, bool plane, CMatrix &point, CMatrix &axis,
                          ZoneInfo &info) {
  GaussianFitInfo gaussian;
  const MetrologyStatus status = points.GetRows() == 3 && points.GetCols() < (plane ? 4 : 3)
                                     ? MetrologyStatus::kTooFewPoints
                                     : (plane ? GaussianPlaneFit(points, point, axis, gaussian)
                                              : GaussianLineFit(points, point, axis, gaussian));
  if (status != MetrologyStatus::kConverged) {
    point = NanMatrix(3, 1);
    axis = NanMatrix(3, 1);
    FailZoneInfo(status, points.GetRows() == 3 ? points.GetCols() : 0, info);
    return status;
  }
  PointBlock block;
  block.Load(points, 0);
  const double scale = block.extent();
  FrameState state = MakeFrame(VecOf(point), VecOf(axis));
  ZoneOutcome out;
  if (plane) {
    out = SearchZone(PlaneModel(block, scale), state, ZoneKind::kMinimumZone, block.size());
    const double mid = 0.5 * (out.lower + out.upper);
    const Vec3 n = Oriented(state.w);
    const double sign = Dot(n, state.w);
    point = ColumnOf(state.a + mid * state.w);
    axis = ColumnOf(n);
    FillZoneInfo(out, out.upper - out.lower, mid, info);
    if (sign < 0.0) {
      // The normal turned over: deviations and sides follow it.
      for (int i = 0; i < block.size(); ++i)
        info.deviations(i, 0) = -info.deviations(i, 0);
      for (int i = 0; i < info.sides.GetRows(); ++i)
        info.sides(i, 0) = -info.sides(i, 0);
    }
  } else {
    out = SearchZone(AxisModel(block, scale), state, ZoneKind::kCircumscribed, block.size());
    point = ColumnOf(state.a);
    axis = ColumnOf(Oriented(state.w));
    FillZoneInfo(out, 2.0 * out.upper, 0.0, info);
  }
  return info.status;
}

}  // namespace

MetrologyStatus MinimumZoneStraightness(const CMatrix &points, CMatrix &axisPoint,
                                        CMatrix &direction, ZoneInfo &info) {
  return FrameZone(points, false, axisPoint, direction, info);
}

MetrologyStatus MinimumZoneFlatness(const CMatrix &points, CMatrix &point, CMatrix &normal,
                                    ZoneInfo &info) {
  return FrameZone(points, true, point, normal, info);
}

MetrologyStatus MinimumZoneRoundness(const CMatrix &points, CMatrix &centre, CMatrix &normal,
                                     double &radius, ZoneInfo &info) {
  return CentreZone(points, true, ZoneKind::kMinimumZone, centre, &normal, radius, info);
}

MetrologyStatus MinimumZoneSphericity(const CMatrix &points, CMatrix &centre, double &radius,
                                      ZoneInfo &info) {
  return CentreZone(points, false, ZoneKind::kMinimumZone, centre, nullptr, radius, info);
}
