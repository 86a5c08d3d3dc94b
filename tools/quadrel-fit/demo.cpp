#include "demo.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "commands.h"
#include "quadrel/frontend/format.h"
#include "quadrel/frontend/peak_fit.h"
#include "quadrel/frontend/report.h"
#include "quadrel/frontend/shape_fit.h"
#include "quadrel/frontend/trihedral_fit.h"
#include "report.h"
#include "samples.h"

namespace quadrel_fit {

namespace {

namespace fe = quadrel_frontend;
using fe::FormatNumber;
using fe::FormatVector;
using fe::kDegrees;

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

// The rows of one shape: the fitted fields against the true ones.
void AddShapeRows(const ShapeTruth &truth, const fe::ShapeFit &fit, std::vector<Row> &rows) {
  const std::string &shape = truth.shape;
  auto vector = [&](const char *name, const Vec3 &t, const Vec3 &f) {
    rows.push_back({shape, name, Values(t), Values(f), "", ""});
  };
  auto scalar = [&](const char *name, double t, const char *field) {
    rows.push_back({shape, name, {t}, {fit.Scalar(field)}, "", ""});
  };
  auto aligned = [&](const char *field, const Vec3 &t) { return Aligned(fit.Vector(field), t); };
  if (shape == "line") {
    vector("centroid", truth.centroid, fit.Vector("centroid"));
    vector("direction", truth.direction, aligned("direction", truth.direction));
  } else if (shape == "plane") {
    vector("centroid", truth.centroid, fit.Vector("centroid"));
    vector("normal", truth.normal, aligned("normal", truth.normal));
  } else if (shape == "circle") {
    vector("centre", truth.centre, fit.Vector("centre"));
    vector("normal", truth.normal, aligned("normal", truth.normal));
    scalar("radius", truth.radius, "radius");
  } else if (shape == "sphere") {
    vector("centre", truth.centre, fit.Vector("centre"));
    scalar("radius", truth.radius, "radius");
  } else if (shape == "ellipse") {
    vector("centre", truth.centre, fit.Vector("centre"));
    vector("normal", truth.normal, aligned("normal", truth.normal));
    scalar("semi-major", truth.semiMajor, "semi_major");
    scalar("semi-minor", truth.semiMinor, "semi_minor");
    // Which focus comes first falls out of the search.
    const Vec3 foci[2] = {fit.Vector("focus_1"), fit.Vector("focus_2")};
    const bool swapped = Distance(Values(truth.foci[0]), Values(foci[0])) >
                         Distance(Values(truth.foci[0]), Values(foci[1]));
    vector("focus 1", truth.foci[0], foci[swapped ? 1 : 0]);
    vector("focus 2", truth.foci[1], foci[swapped ? 0 : 1]);
  } else if (shape == "paraboloid") {
    vector("vertex", truth.vertex, fit.Vector("vertex"));
    scalar("a", truth.a, "a");
    scalar("b", truth.b, "b");
    scalar("sign", truth.sign, "sign");
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
    const fe::ShapeFit fit = fe::FitShape(*fe::FindShape(s.truth.shape), s.sample.table);
    Require(fit.outcome);
    AddShapeRows(s.truth, fit, rows);
  }

  const fe::TrihedralFit &truth = data.trihedralTruth;
  const fe::TrihedralFit trihedral = fe::FitTrihedral(
      {&data.faces[0].table, &data.faces[1].table, &data.faces[2].table}, truth.edgeAngle);
  Require(trihedral.outcome);
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
      {"trihedral", "status", {}, {}, fe::TrihedralStatus(0), fe::TrihedralStatus(trihedral.code)});

  const fe::PeakFit peak = fe::FindPeak(data.peak.table);
  Require(peak.outcome);
  rows.push_back({"peak",
                  "position",
                  {data.peakTruth[0], data.peakTruth[1]},
                  {peak.peak[0], peak.peak[1]},
                  "",
                  ""});
  rows.push_back({"peak", "method", {}, {}, fe::PeakMethod(0), fe::PeakMethod(peak.code)});

  if (!options.saveDirectory.empty()) SaveSamples(data, options.saveDirectory);

  if (options.json) {
    fe::Report report;
    report.entries = {fe::TextEntry("command", "demo"), fe::NumberEntry("noise", options.noise),
                      fe::IntegerEntry("seed", options.seed)};
    for (const Row &row : rows) {
      fe::ReportEntries item = {fe::TextEntry("shape", row.shape),
                                fe::TextEntry("parameter", row.parameter)};
      if (row.truth.empty()) {
        item.push_back(fe::TextEntry("true", row.trueText));
        item.push_back(fe::TextEntry("fitted", row.fittedText));
      } else {
        item.push_back(fe::NumberListEntry("true", row.truth));
        item.push_back(fe::NumberListEntry("fitted", row.fitted));
        item.push_back(fe::NumberEntry("error", Distance(row.truth, row.fitted)));
      }
      report.rows.push_back(std::move(item));
    }
    WriteJson(ToJson(report), out);
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
