// The shape fits of the front ends: one table with an entry per shape (its
// name, the fewest points it takes, the checks that refuse degenerate data,
// the call into the library, its repairs and warnings), and one result type
// whose values are named fields, read alike by the text, JSON and CSV writers
// and by the Python binding. A new shape is a new entry in the table.
#ifndef QUADREL_FRONTEND_SHAPE_FIT_H
#define QUADREL_FRONTEND_SHAPE_FIT_H

#include <string>
#include <string_view>
#include <vector>

#include "quadrel/frontend/outcome.h"
#include "quadrel/frontend/vec3.h"
#include "quadrel/io/point_set.h"

namespace quadrel_frontend {

// What a field's values are: a point, a unit vector, a length, or a plain
// number such as a sign.
enum class FieldKind { kPoint, kDirection, kLength, kNumber };

// One named result: one value (a scalar) or three (a vector in space).
struct ResultField {
  std::string name;  // "centre", "focal_sum": the key of the JSON output
  FieldKind kind = FieldKind::kNumber;
  std::vector<double> values;
};

struct ShapeEntry;

// The result of a shape fit. When outcome is not ok, reason says why and the
// fields and residuals are empty; otherwise every value is finite, residuals
// hold one value per point in the order of the points, and warning is set when
// the numbers are finite but not to be trusted.
struct ShapeFit {
  const ShapeEntry *shape = nullptr;
  Outcome outcome;
  int points = 0;
  std::vector<ResultField> fields;
  std::vector<double> residuals;
  std::string warning;

  // The field of that name, or nullptr.
  const ResultField *Find(std::string_view name) const;
  // The values of a field that exists with three values, or with one value.
  Vec3 Vector(std::string_view name) const;
  double Scalar(std::string_view name) const;
  // Appends a field; values holds 1 or 3 numbers.
  void Add(std::string name, FieldKind kind, std::vector<double> values);
};

// One shape of the table. The stages run in this order: check, call, then (if
// every field is finite) repair and, if every residual is finite, finish. A
// stage refuses the data by returning an outcome that is not ok.
struct ShapeEntry {
  const char *name;     // "sphere"
  const char *article;  // "a" or "an", for "a sphere fit"
  int minimumPoints;
  // What the fit gives and what its residuals measure, in a sentence or two
  // (the tool's help).
  const char *description;
  // Refuses degenerate data before the library sees it; what is "a sphere fit".
  Outcome (*check)(const quadrel_io::PointSet &points, const std::string &what);
  // Calls the library: adds the fields in the order they are shown and sets
  // the residuals.
  void (*call)(const quadrel_io::PointSet &points, ShapeFit &fit);
  // Mends residuals that the library leaves as no number; may be null.
  void (*repair)(const quadrel_io::PointSet &points, ShapeFit &fit);
  // Derives further fields, refuses results that describe no shape, sets the
  // warning; may be null.
  Outcome (*finish)(const quadrel_io::PointSet &points, ShapeFit &fit);
};

// Every shape, in the order the tool lists them: line, plane, circle, sphere,
// ellipse, paraboloid, cylinder, cone.
const std::vector<ShapeEntry> &Shapes();
// The shape of that name, or nullptr.
const ShapeEntry *FindShape(std::string_view name);
// "a sphere fit", "an ellipse fit": the fit as messages name it.
std::string FitName(const ShapeEntry &shape);

// Fits the shape to the points. Never throws for bad data: a refusal comes
// back in outcome (too few points, degenerate data, a result that is no
// numbers) with a message that names the file and the fault.
ShapeFit FitShape(const ShapeEntry &shape, const quadrel_io::PointSet &points);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_SHAPE_FIT_H
