#include "quadrel/metrology/gaussian_line_plane.h"

#include <cmath>
#include <vector>

#include "quadrel/fitting/line_plane.h"
#include "quadrel/metrology/internal/gauss_newton.h"
#include "quadrel/metrology/internal/point_block.h"

namespace {

// The checks both fits share: true when block holds usable points; otherwise
// info and the outputs say why not.
bool Prepare(const CMatrix &points, int minimum, int rankNeeded, PointBlock &block, CMatrix &point,
             CMatrix &axis, GaussianFitInfo &info) {
  const MetrologyStatus status = block.Load(points, minimum, rankNeeded);
  if (status == MetrologyStatus::kConverged) return true;
  point = NanMatrix(3, 1);
  axis = NanMatrix(3, 1);
  FailInfo(status, points.GetRows() == 3 ? points.GetCols() : 0, 6, info);
  return false;
}

}  // namespace

MetrologyStatus GaussianLineFit(const CMatrix &points, CMatrix &point, CMatrix &direction,
                                GaussianFitInfo &info) {
  PointBlock block;
  if (!Prepare(points, 2, 1, block, point, direction, info)) return info.status;
  CMatrix centroid, dir, distances;
  LineFit(points, centroid, dir, distances);
  const Vec3 x0 = VecOf(centroid), w = Oriented(VecOf(dir));
  Vec3 u, v;
  Complement(w, u, v);
  // Local parameters: shifts of the point along u and v, tilts of the
  // direction towards u and v. Each point gives two residuals, its offsets
  // along u and along v.
  NormalEquations eq;
  eq.Clear(4);
  std::vector<double> residuals(static_cast<size_t>(block.size()));
  for (int i = 0; i < block.size(); ++i) {
    const Vec3 q = block[i] - x0;
    const double t = Dot(q, w), ru = Dot(q, u), rv = Dot(q, v);
    const double ju[4] = {-1.0, 0.0, -t, 0.0}, jv[4] = {0.0, -1.0, 0.0, -t};
    eq.Add<4>(ju, ru);
    eq.Add<4>(jv, rv);
    residuals[i] = std::sqrt(ru * ru + rv * rv);
  }
  eq.Symmetrise();
  const double t[24] = {u.x, v.x, 0,   0,   u.y, v.y, 0,   0,   u.z, v.z, 0,   0,
                        0,   0,   u.x, v.x, 0,   0,   u.y, v.y, 0,   0,   u.z, v.z};
  point = ColumnOf(x0);
  direction = ColumnOf(w);
  FinishInfo(MetrologyStatus::kConverged, 0, eq, residuals, t, 6, info);
  return info.status;
}

MetrologyStatus GaussianPlaneFit(const CMatrix &points, CMatrix &point, CMatrix &normal,
                                 GaussianFitInfo &info) {
  PointBlock block;
  if (!Prepare(points, 3, 2, block, point, normal, info)) return info.status;
  CMatrix centroid, nrm, distances;
  PlaneFit(points, centroid, nrm, distances);
  const Vec3 x0 = VecOf(centroid), n = Oriented(VecOf(nrm));
  Vec3 u, v;
  Complement(n, u, v);
  // Local parameters: a shift along the normal and tilts towards u and v.
  NormalEquations eq;
  eq.Clear(3);
  std::vector<double> residuals(static_cast<size_t>(block.size()));
  for (int i = 0; i < block.size(); ++i) {
    const Vec3 q = block[i] - x0;
    const double r = Dot(q, n);
    const double j[3] = {-1.0, Dot(q, u), Dot(q, v)};
    eq.Add<3>(j, r);
    residuals[i] = r;
  }
  eq.Symmetrise();
  const double t[18] = {n.x, 0, 0, n.y, 0, 0, n.z, 0, 0, 0, u.x, v.x, 0, u.y, v.y, 0, u.z, v.z};
  point = ColumnOf(x0);
  normal = ColumnOf(n);
  FinishInfo(MetrologyStatus::kConverged, 0, eq, residuals, t, 6, info);
  return info.status;
}
