// Gaussian and minimum-zone variants of the shapes, and cylinder and cone.
#include "quadrel/frontend/metrology_shapes.h"

#include <cmath>
#include <vector>

#include <quadrel/metrology/metrology.h>

#include "quadrel/frontend/checks.h"
#include "quadrel/frontend/point_matrix.h"

namespace quadrel_frontend {

using quadrel_io::PointSet;

namespace {

std::vector<double> Column(const CMatrix &m) {
  return {m(0, 0), m(1, 0), m(2, 0)};
}

std::vector<double> Values(const CMatrix &m) {
  std::vector<double> values(static_cast<size_t>(m.GetRows()));
  for (int k = 0; k < m.GetRows(); ++k)
    values[static_cast<size_t>(k)] = m(k, 0);
  return values;
}

// The residuals and the fields every Gaussian fit adds after its own; a fit
// that stopped at its iteration limit keeps its numbers with a warning.
void FinishGaussian(MetrologyStatus status, const GaussianFitInfo &info, ShapeFit &fit) {
  fit.Add("rms", FieldKind::kLength, {info.rms});
  fit.Add("iterations", FieldKind::kNumber, {static_cast<double>(info.iterations)});
  fit.residuals = Values(info.residuals);
  if (status == MetrologyStatus::kStepLimit)
    fit.warning = "the Gaussian fit stopped at its iteration limit before it converged";
}

void FinishZone(MetrologyStatus status, const ZoneInfo &info, const char *form, ShapeFit &fit) {
  fit.Add(form, FieldKind::kLength, {info.width});
  fit.residuals = Values(info.deviations);
  if (status == MetrologyStatus::kStepLimit)
    fit.warning = "the minimum-zone search stopped at its iteration limit before it converged";
}

void GaussianLineCall(const PointSet &points, ShapeFit &fit) {
  CMatrix point, direction;
  GaussianFitInfo info;
  const MetrologyStatus status = GaussianLineFit(PointMatrix(points), point, direction, info);
  fit.Add("centroid", FieldKind::kPoint, Column(point));
  fit.Add("direction", FieldKind::kDirection, Column(direction));
  FinishGaussian(status, info, fit);
}

void GaussianPlaneCall(const PointSet &points, ShapeFit &fit) {
  CMatrix point, normal;
  GaussianFitInfo info;
  const MetrologyStatus status = GaussianPlaneFit(PointMatrix(points), point, normal, info);
  fit.Add("centroid", FieldKind::kPoint, Column(point));
  fit.Add("normal", FieldKind::kDirection, Column(normal));
  FinishGaussian(status, info, fit);
}

void GaussianCircleCall(const PointSet &points, ShapeFit &fit) {
  CMatrix centre, normal;
  double radius = 0.0;
  GaussianFitInfo info;
  const MetrologyStatus status =
      GaussianCircleFit(PointMatrix(points), centre, normal, radius, info);
  fit.Add("centre", FieldKind::kPoint, Column(centre));
  fit.Add("normal", FieldKind::kDirection, Column(normal));
  fit.Add("radius", FieldKind::kLength, {radius});
  fit.Add("u_radius", FieldKind::kLength, {info.uncertainties(6, 0)});
  FinishGaussian(status, info, fit);
}

void GaussianSphereCall(const PointSet &points, ShapeFit &fit) {
  CMatrix centre;
  double radius = 0.0;
  GaussianFitInfo info;
  const MetrologyStatus status = GaussianSphereFit(PointMatrix(points), centre, radius, info);
  fit.Add("centre", FieldKind::kPoint, Column(centre));
  fit.Add("radius", FieldKind::kLength, {radius});
  fit.Add("u_radius", FieldKind::kLength, {info.uncertainties(3, 0)});
  FinishGaussian(status, info, fit);
}

void StraightnessCall(const PointSet &points, ShapeFit &fit) {
  CMatrix point, direction;
  ZoneInfo info;
  const MetrologyStatus status =
      MinimumZoneStraightness(PointMatrix(points), point, direction, info);
  fit.Add("axis_point", FieldKind::kPoint, Column(point));
  fit.Add("direction", FieldKind::kDirection, Column(direction));
  FinishZone(status, info, "straightness", fit);
}

void FlatnessCall(const PointSet &points, ShapeFit &fit) {
  CMatrix point, normal;
  ZoneInfo info;
  const MetrologyStatus status = MinimumZoneFlatness(PointMatrix(points), point, normal, info);
  fit.Add("point", FieldKind::kPoint, Column(point));
  fit.Add("normal", FieldKind::kDirection, Column(normal));
  FinishZone(status, info, "flatness", fit);
}

void RoundnessCall(const PointSet &points, ShapeFit &fit) {
  CMatrix centre, normal;
  double radius = 0.0;
  ZoneInfo info;
  const MetrologyStatus status =
      MinimumZoneRoundness(PointMatrix(points), centre, normal, radius, info);
  fit.Add("centre", FieldKind::kPoint, Column(centre));
  fit.Add("normal", FieldKind::kDirection, Column(normal));
  fit.Add("radius", FieldKind::kLength, {radius});
  FinishZone(status, info, "roundness", fit);
}

void SphericityCall(const PointSet &points, ShapeFit &fit) {
  CMatrix centre;
  double radius = 0.0;
  ZoneInfo info;
  const MetrologyStatus status = MinimumZoneSphericity(PointMatrix(points), centre, radius, info);
  fit.Add("centre", FieldKind::kPoint, Column(centre));
  fit.Add("radius", FieldKind::kLength, {radius});
  FinishZone(status, info, "sphericity", fit);
}

Outcome Distinct(const PointSet &p, const std::string &what) {
  return RequireDistinct(p, what);
}

const std::vector<ShapeEntry> &GaussianShapes() {
  static const std::vector<ShapeEntry> kShapes = {
      {"line", "a", 2, "", Distinct, GaussianLineCall, nullptr, nullptr},
      {"plane", "a", 3, "", RequireNotOnOneLine, GaussianPlaneCall, nullptr, nullptr},
      {"circle", "a", 3, "", RequireNotOnOneLine, GaussianCircleCall, nullptr, nullptr},
      {"sphere", "a", 4, "", RequireNotInOnePlane, GaussianSphereCall, nullptr, nullptr},
  };
  return kShapes;
}

const std::vector<ShapeEntry> &MinimumZoneShapes() {
  static const std::vector<ShapeEntry> kShapes = {
      {"line", "a", 3, "", Distinct, StraightnessCall, nullptr, nullptr},
      {"plane", "a", 4, "", RequireNotOnOneLine, FlatnessCall, nullptr, nullptr},
      {"circle", "a", 3, "", RequireNotOnOneLine, RoundnessCall, nullptr, nullptr},
      {"sphere", "a", 4, "", RequireNotInOnePlane, SphericityCall, nullptr, nullptr},
  };
  return kShapes;
}

}  // namespace

bool ParseCriterion(std::string_view text, Criterion &criterion) {
  if (text == "algebraic") {
    criterion = Criterion::kAlgebraic;
  } else if (text == "gaussian") {
    criterion = Criterion::kGaussian;
  } else if (text == "minimum-zone") {
    criterion = Criterion::kMinimumZone;
  } else {
    return false;
  }
  return true;
}

const ShapeEntry *WithCriterion(const ShapeEntry &shape, Criterion criterion) {
  const std::string_view name = shape.name;
  const bool gaussianOnly = name == "cylinder" || name == "cone";
  if (criterion == Criterion::kAlgebraic || (gaussianOnly && criterion == Criterion::kGaussian))
    return &shape;
  const std::vector<ShapeEntry> &variants =
      criterion == Criterion::kGaussian ? GaussianShapes() : MinimumZoneShapes();
  for (const ShapeEntry &variant : variants) {
    if (name == variant.name) return &variant;
  }
  return nullptr;
}

void CylinderCall(const PointSet &points, ShapeFit &fit) {
  CMatrix point, direction;
  double radius = 0.0;
  GaussianFitInfo info;
  const MetrologyStatus status =
      GaussianCylinderFit(PointMatrix(points), point, direction, radius, info);
  fit.Add("axis_point", FieldKind::kPoint, Column(point));
  fit.Add("direction", FieldKind::kDirection, Column(direction));
  fit.Add("radius", FieldKind::kLength, {radius});
  fit.Add("u_radius", FieldKind::kLength, {info.uncertainties(6, 0)});
  FinishGaussian(status, info, fit);
}

void ConeCall(const PointSet &points, ShapeFit &fit) {
  CMatrix point, direction;
  double halfAngle = 0.0, radius = 0.0;
  GaussianFitInfo info;
  const MetrologyStatus status =
      GaussianConeFit(PointMatrix(points), point, direction, halfAngle, radius, info);
  fit.Add("axis_point", FieldKind::kPoint, Column(point));
  fit.Add("direction", FieldKind::kDirection, Column(direction));
  fit.Add("half_angle_degrees", FieldKind::kNumber, {halfAngle * 57.29577951308232});
  fit.Add("radius", FieldKind::kLength, {radius});
  fit.Add("u_half_angle_degrees", FieldKind::kNumber,
          {info.uncertainties(6, 0) * 57.29577951308232});
  fit.Add("u_radius", FieldKind::kLength, {info.uncertainties(7, 0)});
  FinishGaussian(status, info, fit);
}

}  // namespace quadrel_frontend
