// The table of shapes: one entry per shape, with the stages FitShape runs.
#include <cmath>

#include <quadrel/quadrel.h>

#include "quadrel/frontend/checks.h"
#include "quadrel/frontend/metrology_shapes.h"
#include "quadrel/frontend/point_matrix.h"
#include "quadrel/frontend/shape_fit.h"

namespace quadrel_frontend {

using quadrel_io::PointSet;

namespace {

std::vector<double> Column(const CMatrix &m, int j) {
  return {m(0, j), m(1, j), m(2, j)};
}

// Residuals by point; the library gives a row for some fits and a column for
// others, and the linear index reads both.
std::vector<double> Values(const CMatrix &m, int n) {
  std::vector<double> values(static_cast<size_t>(n));
  for (int k = 0; k < n; ++k)
    values[static_cast<size_t>(k)] = m(k);
  return values;
}

Outcome ParaboloidCheck(const PointSet &points, const std::string &) {
  return RequireParaboloidTermsApart(points);
}

void LineCall(const PointSet &points, ShapeFit &fit) {
  CMatrix centre, axis, residuals;
  LineFit(PointMatrix(points), centre, axis, residuals);
  fit.Add("centroid", FieldKind::kPoint, Column(centre, 0));
  fit.Add("direction", FieldKind::kDirection, Column(axis, 0));
  fit.residuals = Values(residuals, points.count());
}

void PlaneCall(const PointSet &points, ShapeFit &fit) {
  CMatrix centre, normal, residuals;
  PlaneFit(PointMatrix(points), centre, normal, residuals);
  fit.Add("centroid", FieldKind::kPoint, Column(centre, 0));
  fit.Add("normal", FieldKind::kDirection, Column(normal, 0));
  fit.residuals = Values(residuals, points.count());
}

void CircleCall(const PointSet &points, ShapeFit &fit) {
  CMatrix centre, normal, residuals;
  double radius = 0.0;
  CircleFit(PointMatrix(points), centre, normal, radius, residuals);
  fit.Add("centre", FieldKind::kPoint, Column(centre, 0));
  fit.Add("normal", FieldKind::kDirection, Column(normal, 0));
  fit.Add("radius", FieldKind::kLength, {radius});
  fit.residuals = Values(residuals, points.count());
}

// A point on the circle's axis has an in-plane distance of 0 that rounding can
// push below 0, and the library's root of it is no number. Its true distance
// from the circle is the hypotenuse of its height and the radius.
void CircleRepair(const PointSet &points, ShapeFit &fit) {
  const Vec3 centre = fit.Vector("centre");
  const Vec3 normal = fit.Vector("normal");
  const double radius = fit.Scalar("radius");
  for (int k = 0; k < points.count(); ++k) {
    double &r = fit.residuals[static_cast<size_t>(k)];
    if (std::isnan(r)) {
      double height = 0.0;
      for (int i = 0; i < 3; ++i)
        height += (points.at(i, k) - centre[i]) * normal[i];
      r = std::sqrt(height * height + radius * radius);
    }
  }
}

void SphereCall(const PointSet &points, ShapeFit &fit) {
  CMatrix centre, residuals;
  double radius = 0.0;
  SphereFit(PointMatrix(points), centre, radius, residuals);
  fit.Add("centre", FieldKind::kPoint, Column(centre, 0));
  fit.Add("radius", FieldKind::kLength, {radius});
  fit.residuals = Values(residuals, points.count());
}

void EllipseCall(const PointSet &points, ShapeFit &fit) {
  CMatrix foci, normal, residuals;
  double focalSum = 0.0;
  EllipseFit(PointMatrix(points), foci, normal, focalSum, residuals);
  fit.Add("focus_1", FieldKind::kPoint, Column(foci, 0));
  fit.Add("focus_2", FieldKind::kPoint, Column(foci, 1));
  fit.Add("normal", FieldKind::kDirection, Column(normal, 0));
  fit.Add("focal_sum", FieldKind::kLength, {focalSum});
  fit.residuals = Values(residuals, points.count());
}

// The centre (the mean of the foci) and the semi-axes; a refusal when the
// numbers describe no ellipse, a warning when the search ran away.
Outcome EllipseFinish(const PointSet &points, ShapeFit &fit) {
  const Vec3 focus1 = fit.Vector("focus_1");
  const Vec3 focus2 = fit.Vector("focus_2");
  Vec3 centre{};
  for (int i = 0; i < 3; ++i)
    centre[i] = (focus1[i] + focus2[i]) / 2.0;
  const double semiMajor = fit.Scalar("focal_sum") / 2.0;
  const double focalHalfDistance = Distance(focus1, focus2) / 2.0;
  // The search has no constraint that keeps the focal sum above the distance
  // of the foci; below it the numbers describe no ellipse.
  if (!(semiMajor >= focalHalfDistance)) {
    return Outcome::Refused(Status::kDegenerate,
                            "an ellipse fit of " + points.name() +
                                " found no ellipse: its focal sum is shorter than the distance "
                                "of its foci; the points do not lie near an ellipse");
  }
  const double semiMinor = std::sqrt(semiMajor * semiMajor - focalHalfDistance * focalHalfDistance);
  fit.Add("centre", FieldKind::kPoint, {centre[0], centre[1], centre[2]});
  fit.Add("semi_major", FieldKind::kLength, {semiMajor});
  fit.Add("semi_minor", FieldKind::kLength, {semiMinor});
  fit.Add("centre_to_focus", FieldKind::kLength, {focalHalfDistance});
  // On elongated ellipses the search can run away along a valley in which one
  // focus leaves the points and the focal sum grows without bound; the
  // ellipse then lies far beyond the extent of the points.
  const int n = points.count();
  Vec3 centroid{};
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < n; ++k)
      centroid[i] += points.at(i, k);
    centroid[i] /= n;
  }
  double extent = 0.0;
  for (int k = 0; k < n; ++k) {
    extent =
        std::fmax(extent, Distance({points.at(0, k), points.at(1, k), points.at(2, k)}, centroid));
  }
  if (semiMajor > 100.0 * extent || Distance(centre, centroid) > 100.0 * extent) {
    fit.warning =
        "the ellipse search ran away from the points (the ellipse lies far beyond their "
        "extent); the ellipse may be too elongated for this fit";
  }
  return {};
}

void ParaboloidCall(const PointSet &points, ShapeFit &fit) {
  CMatrix vertex, residuals;
  double a = 0.0, b = 0.0, sign = 0.0;
  ParaboloidFit(PointMatrix(points), vertex, a, b, sign, residuals);
  fit.Add("vertex", FieldKind::kPoint, Column(vertex, 0));
  fit.Add("a", FieldKind::kLength, {a});
  fit.Add("b", FieldKind::kLength, {b});
  fit.Add("sign", FieldKind::kNumber, {sign});
  fit.residuals = Values(residuals, points.count());
}

}  // namespace

const std::vector<ShapeEntry> &Shapes() {
  static const std::vector<ShapeEntry> kShapes = {
      {"line", "a", 2,
       "Fit a straight line: centroid and unit direction; residuals are distances from the "
       "line.",
       [](const PointSet &p, const std::string &what) { return RequireDistinct(p, what); },
       LineCall, nullptr, nullptr},
      {"plane", "a", 3,
       "Fit a plane: centroid and unit normal; residuals are signed distances, positive "
       "on the side the normal points to.",
       RequireNotOnOneLine, PlaneCall, nullptr, nullptr},
      {"circle", "a", 3,
       "Fit a circle in space: centre, unit normal of its plane and radius; residuals are "
       "distances from the circle.",
       RequireNotOnOneLine, CircleCall, CircleRepair, nullptr},
      {"sphere", "a", 4,
       "Fit a sphere: centre and radius; residuals are distances from the centre minus "
       "the radius, positive outside.",
       RequireNotInOnePlane, SphereCall, nullptr, nullptr},
      {"ellipse", "an", 5,
       "Fit an ellipse in space: its two foci, the plane normal and the focal sum, with the "
       "centre (mean of the foci) and the semi-axes derived from them; a residual combines a "
       "point's height over the plane with the squared mismatch of its focal sum.",
       RequireNotOnOneLine, EllipseCall, nullptr, EllipseFinish},
      {"paraboloid", "a", 5,
       "Fit z = z0 + sign ((x - x0) / a)^2 + s ((y - y0) / b)^2, s = +1 or -1, with its section "
       "axes along x and y: vertex, a, b and sign, the sign of the x curvature (s is not "
       "reported); residuals are vertical, positive above the surface.",
       ParaboloidCheck, ParaboloidCall, nullptr, nullptr},
      {"cylinder", "a", 5,
       "Fit a cylinder (Gaussian, least-squares orthogonal distances): a point of its axis "
       "(nearest the centroid), unit axis direction and radius, with the standard uncertainty of "
       "the radius; residuals are distances from the axis minus the radius, positive outside.",
       RequireNotOnOneLine, CylinderCall, nullptr, nullptr},
      {"cone", "a", 6,
       "Fit a cone (Gaussian, least-squares orthogonal distances): a point of its axis (nearest "
       "the centroid), unit axis direction towards the wider end, half-angle in degrees and the "
       "radius at that point, with standard uncertainties; residuals are orthogonal distances, "
       "positive outside.",
       RequireNotInOnePlane, ConeCall, nullptr, nullptr},
  };
  return kShapes;
}

}  // namespace quadrel_frontend
