#include "quadrel/frontend/shape_fit.h"

#include <cmath>
#include <utility>

#include "quadrel/frontend/checks.h"

namespace quadrel_frontend {

using quadrel_io::PointSet;

const ResultField *ShapeFit::Find(std::string_view name) const {
  for (const ResultField &field : fields) {
    if (field.name == name) return &field;
  }
  return nullptr;
}

Vec3 ShapeFit::Vector(std::string_view name) const {
  const std::vector<double> &v = Find(name)->values;
  return {v[0], v[1], v[2]};
}

double ShapeFit::Scalar(std::string_view name) const {
  return Find(name)->values[0];
}

void ShapeFit::Add(std::string name, FieldKind kind, std::vector<double> values) {
  fields.push_back({std::move(name), kind, std::move(values)});
}

const ShapeEntry *FindShape(std::string_view name) {
  for (const ShapeEntry &shape : Shapes()) {
    if (name == shape.name) return &shape;
  }
  return nullptr;
}

std::string FitName(const ShapeEntry &shape) {
  return std::string(shape.article) + " " + shape.name + " fit";
}

namespace {

bool AllFinite(const std::vector<double> &values) {
  for (double v : values) {
    if (!std::isfinite(v)) return false;
  }
  return true;
}

Outcome NotNumbers(const ShapeEntry &shape, const PointSet &points) {
  return Outcome::Refused(Status::kDegenerate,
                          FitName(shape) + " of " + points.name() +
                              " gave values that are not numbers; the points do not determine a " +
                              shape.name);
}

// The result of a refused fit: the outcome alone.
ShapeFit Refusal(ShapeFit fit, Outcome outcome) {
  fit.outcome = std::move(outcome);
  fit.fields.clear();
  fit.residuals.clear();
  fit.warning.clear();
  return fit;
}

}  // namespace

ShapeFit FitShape(const ShapeEntry &shape, const PointSet &points) {
  ShapeFit fit;
  fit.shape = &shape;
  fit.points = points.count();
  const std::string what = FitName(shape);
  Outcome outcome = RequirePoints(points, shape.minimumPoints, what);
  if (outcome.ok()) outcome = shape.check(points, what);
  if (!outcome.ok()) return Refusal(std::move(fit), std::move(outcome));

  shape.call(points, fit);
  for (const ResultField &field : fit.fields) {
    if (!AllFinite(field.values)) return Refusal(std::move(fit), NotNumbers(shape, points));
  }
  if (shape.repair != nullptr) shape.repair(points, fit);
  if (!AllFinite(fit.residuals)) return Refusal(std::move(fit), NotNumbers(shape, points));
  if (shape.finish != nullptr) {
    outcome = shape.finish(points, fit);
    if (!outcome.ok()) return Refusal(std::move(fit), std::move(outcome));
  }
  return fit;
}

}  // namespace quadrel_frontend
