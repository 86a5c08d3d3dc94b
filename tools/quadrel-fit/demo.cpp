#include "demo.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include <nlohmann/json.hpp>

#include "fits.h"
#include "report.h"
#include "samples.h"

namespace quadrel_fit {

namespace {

using Json = nlohmann::ordered_json;
constexpr double kDegrees = 180.0 / 3.14159265358979323846;

// One row of the table: a parameter, its true and its fitted value, and the
// distance between the two. Rows about a status carry words instead.
struct Row {
  std::string shape;
  std::string parameter;
  std::vector<double> truth;
  std::vector<double> fitted;
  std::string trueText;
  std::string fittedText;
};

std::vector<double> Values(const Vec3 &v) {
  return {v[0], v[1], v[2]};
}

double Distance(const std::vector<double> &a, const std::vector<double> &b) {
  double squares = 0.0;
  for (size_t i = 0; i < a.size(); ++i)
    squares += (a[i] - b[i]) * (a[i] - b[i]);
  return std::sqrt(squares);
}

// A fitted direction or normal with the sign of the true one: the fits leave
// the sign open.
Vec3 Aligned(const Vec3 &fitted, const Vec3 &truth) {
  const double dot = fitted[0] * truth[0] + fitted[1] * truth[1] + fitted[2] * truth[2];
  return dot < 0.0 ? Vec3{-fitted[0], -fitted[1], -fitted[2]} : fitted;
}

void AddShapeRows(const ShapeResult &truth, const ShapeResult &fit, std::vector<Row> &rows) {
  const std::string shape = ShapeName(truth.shape);
  auto vector = [&](const char *name, const Vec3 &t, const Vec3 &f) {
    rows.push_back({shape, name, Values(t), Values(f), "", ""});
  };
  auto scalar = [&](const char *name, double t, double f) {
    rows.push_back({shape, name, {t}, {f}, "", ""});
  };
  switch (truth.shape) {
    case Shape::kLine:
      vector("centroid", truth.centroid, fit.centroid);
      vector("direction", truth.direction, Aligned(fit.direction, truth.direction));
      break;
    case Shape::kPlane:
      vector("centroid", truth.centroid, fit.centroid);
      vector("normal", truth.normal, Aligned(fit.normal, truth.normal));
      break;
    case Shape::kCircle:
      vector("centre", truth.centre, fit.centre);
      vector("normal", truth.normal, Aligned(fit.normal, truth.normal));
      scalar("radius", truth.radius, fit.radius);
      break;
    case Shape::kSphere:
      vector("centre", truth.centre, fit.centre);
      scalar("radius", truth.radius, fit.radius);
      break;
    case Shape::kEllipse: {
      vector("centre", truth.centre, fit.centre);
      vector("normal", truth.normal, Aligned(fit.normal, truth.normal));
      scalar("semi-major", truth.semiMajor, fit.semiMajor);
      scalar("semi-minor", truth.semiMinor, fit.semiMinor);
      // Which focus comes first falls out of the search.
      const bool swapped = Distance(Values(truth.foci[0]), Values(fit.foci[0])) >
                           Distance(Values(truth.foci[0]), Values(fit.foci[1]));
      vector("focus 1", truth.foci[0], fit.foci[swapped ? 1 : 0]);
      vector("focus 2", truth.foci[1], fit.foci[swapped ? 0 : 1]);
      break;
    }
    case Shape::kParaboloid:
      vector("vertex", truth.vertex, fit.vertex);
      scalar("a", truth.a, fit.a);
      scalar("b", truth.b, fit.b);
      scalar("sign", truth.sign, fit.sign);
      break;
  }
}

std::string Joined(const std::vector<double> &values) {
  return FormatVector(values.data(), static_cast<int>(values.size()));
}

}  // namespace

void RunDemo(const DemoOptions &options, std::ostream &out) {
  const DemoData data = MakeDemoData(options.noise, options.seed);
  std::vector<Row> rows;
  for (const SampleShape &s : data.shapes) {
    AddShapeRows(s.truth, FitShape(s.truth.shape, s.sample.table), rows);
  }

  const TrihedralResult &truth = data.trihedralTruth;
  const TrihedralResult trihedral = FitTrihedral(
      {&data.faces[0].table, &data.faces[1].table, &data.faces[2].table}, truth.edgeAngle);
  rows.push_back({"trihedral", "apex", Values(truth.apex), Values(trihedral.apex), "", ""});
  rows.push_back(
      {"trihedral",
       "angles (deg)",
       {truth.angles[0] * kDegrees, truth.angles[1] * kDegrees, truth.angles[2] * kDegrees},
       {trihedral.angles[0] * kDegrees, trihedral.angles[1] * kDegrees,
        trihedral.angles[2] * kDegrees},
       "",
       ""});
  rows.push_back(
      {"trihedral", "status", {}, {}, TrihedralStatus(0), TrihedralStatus(trihedral.code)});

  const PeakResult peak = FindPeak(data.peak.table);
  rows.push_back({"peak",
                  "position",
                  {data.peakTruth[0], data.peakTruth[1]},
                  {peak.peak[0], peak.peak[1]},
                  "",
                  ""});
  rows.push_back({"peak", "method", {}, {}, PeakMethod(0), PeakMethod(peak.code)});

  if (!options.saveDirectory.empty()) SaveSamples(data, options.saveDirectory);

  if (options.json) {
    Json body = Json::object();
    body["command"] = "demo";
    body["noise"] = options.noise;
    body["seed"] = options.seed;
    Json list = Json::array();
    for (const Row &row : rows) {
      Json item = Json::object();
      item["shape"] = row.shape;
      item["parameter"] = row.parameter;
      if (row.truth.empty()) {
        item["true"] = row.trueText;
        item["fitted"] = row.fittedText;
      } else {
        item["true"] = row.truth;
        item["fitted"] = row.fitted;
        item["error"] = Distance(row.truth, row.fitted);
      }
      list.push_back(item);
    }
    body["rows"] = list;
    WriteJson(body, out);
    return;
  }

  char noise[32];
  std::snprintf(noise, sizeof noise, "%g", options.noise);
  out << TextHeader("demo, every fit on built-in samples with noise " + std::string(noise) +
                    " (seed " + std::to_string(options.seed) +
                    "); directions and normals compared up to sign")
      << '\n';
  std::vector<std::array<std::string, 5>> cells;
  cells.push_back({"shape", "parameter", "true", "fitted", "error"});
  std::string previous;
  for (const Row &row : rows) {
    const std::string shape = row.shape == previous ? "" : row.shape;
    previous = row.shape;
    if (row.truth.empty()) {
      cells.push_back({shape, row.parameter, row.trueText, row.fittedText, ""});
    } else {
      cells.push_back({shape, row.parameter, Joined(row.truth), Joined(row.fitted),
                       FormatNumber(Distance(row.truth, row.fitted))});
    }
  }
  size_t width[5] = {0, 0, 0, 0, 0};
  for (const auto &line : cells) {
    for (size_t c = 0; c < 5; ++c)
      width[c] = std::max(width[c], line[c].size());
  }
  for (const auto &line : cells) {
    std::string text;
    for (size_t c = 0; c < 5; ++c) {
      std::string cell = line[c];
      if (c < 4) cell.resize(width[c] + 2, ' ');
      text += cell;
    }
    while (!text.empty() && text.back() == ' ')
      text.pop_back();
    out << text << '\n';
  }
}

}  // namespace quadrel_fit
