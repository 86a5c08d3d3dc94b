#include "report.h"

#include <cmath>
#include <cstdio>

namespace quadrel_fit {

namespace {

using Json = nlohmann::ordered_json;

Json Array(const Vec3 &v) {
  return Json::array({v[0], v[1], v[2]});
}

// Root mean square, largest magnitude and where it is: the summary that every
// shape fit reports.
Json ResidualSummary(const std::vector<double> &residuals, const PointSet &table) {
  double squares = 0.0;
  size_t largest = 0;
  for (size_t k = 0; k < residuals.size(); ++k) {
    squares += residuals[k] * residuals[k];
    if (std::fabs(residuals[k]) > std::fabs(residuals[largest])) largest = k;
  }
  Json summary = Json::object();
  summary["rms"] = std::sqrt(squares / static_cast<double>(residuals.size()));
  summary["max_abs"] = std::fabs(residuals[largest]);
  summary["max_point"] = static_cast<int>(largest) + 1;
  summary["max_line"] = table.originOf(static_cast<int>(largest));
  return summary;
}

std::string Shown(const std::string &key) {
  std::string shown = key;
  for (char &c : shown) {
    if (c == '_') c = ' ';
  }
  return shown;
}

std::string FormatValue(const Json &value) {
  if (value.is_number_integer()) return std::to_string(value.get<long long>());
  if (value.is_number()) return FormatNumber(value.get<double>());
  if (value.is_string()) return value.get<std::string>();
  if (value.is_array()) {
    std::string joined;
    for (const Json &element : value) {
      if (!joined.empty()) joined += ' ';
      joined += FormatValue(element);
    }
    return joined;
  }
  return value.dump();
}

void WriteFields(const Json &object, int indent, std::ostream &out) {
  constexpr int kKeyWidth = 20;
  for (const auto &item : object.items()) {
    if (item.key() == "command" || item.key() == "file" || item.key() == "files" ||
        item.key() == "values") {
      continue;  // in the header or in the table at the end
    }
    std::string label = std::string(static_cast<size_t>(indent), ' ') + Shown(item.key());
    if (item.value().is_object()) {
      out << label << '\n';
      WriteFields(item.value(), indent + 2, out);
      continue;
    }
    if (label.size() < kKeyWidth) label.resize(kKeyWidth, ' ');
    out << label << ' ' << FormatValue(item.value()) << '\n';
  }
}

}  // namespace

std::string FormatNumber(double value) {
  if (value == 0.0) value = 0.0;  // no "-0" for a person
  char text[40];
  std::snprintf(text, sizeof text, "%.*g", kTextDigits, value);
  return text;
}

std::string FormatVector(const double *values, int count) {
  std::string joined;
  for (int i = 0; i < count; ++i) {
    if (i > 0) joined += ' ';
    joined += FormatNumber(values[i]);
  }
  return joined;
}

std::string TextHeader(const std::string &title) {
  return "# quadrel-fit " QUADREL_FIT_VERSION ": " + title + "; numbers rounded to " +
         std::to_string(kTextDigits) + " significant digits";
}

Report ShapeReport(const ShapeResult &result, const PointSet &table, bool withResiduals) {
  Report report;
  const std::string shape = ShapeName(result.shape);
  report.title = shape + " fit of " + table.name();
  Json &body = report.body;
  body["command"] = shape;
  body["file"] = table.name();
  body["points"] = result.points;
  switch (result.shape) {
    case Shape::kLine:
      body["centroid"] = Array(result.centroid);
      body["direction"] = Array(result.direction);
      break;
    case Shape::kPlane:
      body["centroid"] = Array(result.centroid);
      body["normal"] = Array(result.normal);
      break;
    case Shape::kCircle:
      body["centre"] = Array(result.centre);
      body["normal"] = Array(result.normal);
      body["radius"] = result.radius;
      break;
    case Shape::kSphere:
      body["centre"] = Array(result.centre);
      body["radius"] = result.radius;
      break;
    case Shape::kEllipse:
      body["focus_1"] = Array(result.foci[0]);
      body["focus_2"] = Array(result.foci[1]);
      body["normal"] = Array(result.normal);
      body["focal_sum"] = result.focalSum;
      body["centre"] = Array(result.centre);
      body["semi_major"] = result.semiMajor;
      body["semi_minor"] = result.semiMinor;
      body["centre_to_focus"] = result.focalHalfDistance;
      break;
    case Shape::kParaboloid:
      body["vertex"] = Array(result.vertex);
      body["a"] = result.a;
      body["b"] = result.b;
      body["sign"] = result.sign;
      break;
  }
  body["residuals"] = ResidualSummary(result.residuals, table);
  if (withResiduals) {
    body["residuals"]["values"] = result.residuals;
    report.residualLines.reserve(static_cast<size_t>(table.count()));
    for (int k = 0; k < table.count(); ++k)
      report.residualLines.push_back(table.originOf(k));
  }
  if (!result.warning.empty()) body["warning"] = result.warning;
  return report;
}

Report TrihedralReport(const TrihedralResult &result,
                       const std::array<const PointSet *, 3> &faces) {
  Report report;
  report.title =
      "trihedral fit of " + faces[0]->name() + ", " + faces[1]->name() + ", " + faces[2]->name();
  constexpr double kDegrees = 180.0 / 3.14159265358979323846;
  Json &body = report.body;
  body["command"] = "trihedral";
  body["files"] = Json::array({faces[0]->name(), faces[1]->name(), faces[2]->name()});
  body["points"] = Json::array({result.points[0], result.points[1], result.points[2]});
  body["edge_angle_deg"] = result.edgeAngle * kDegrees;
  body["apex"] = Array(result.apex);
  body["angles_rad"] = Array(result.angles);
  body["angles_deg"] = Json::array(
      {result.angles[0] * kDegrees, result.angles[1] * kDegrees, result.angles[2] * kDegrees});
  body["axis"] = Array(result.axis);
  body["rms"] = result.rms;
  body["translation_step"] = result.translationStep;
  body["rotation_step"] = result.rotationStep;
  body["code"] = result.code;
  body["status"] = TrihedralStatus(result.code);
  return report;
}

Report PeakReport(const PeakResult &result, const PointSet &samples) {
  Report report;
  report.title = "quality peak of " + samples.name();
  Json &body = report.body;
  body["command"] = "peak";
  body["file"] = samples.name();
  body["samples"] = result.samples;
  body["peak"] = Json::array({result.peak[0], result.peak[1]});
  body["code"] = result.code;
  body["method"] = PeakMethod(result.code);
  Json best = Json::object();
  best["position"] =
      Json::array({samples.at(0, result.bestSample), samples.at(1, result.bestSample)});
  best["quality"] = samples.at(2, result.bestSample);
  best["line"] = samples.originOf(result.bestSample);
  body["best_sample"] = best;
  return report;
}

void WriteText(const Report &report, std::ostream &out) {
  out << TextHeader(report.title) << '\n';
  WriteFields(report.body, 0, out);
  const Json *residuals = nullptr;
  if (report.body.contains("residuals") && report.body["residuals"].contains("values")) {
    residuals = &report.body["residuals"]["values"];
  }
  if (residuals != nullptr) {
    out << "residual per point\n";
    char row[96];
    std::snprintf(row, sizeof row, "%10s %10s  %s\n", "point", "line", "residual");
    out << row;
    size_t k = 0;
    for (const Json &value : *residuals) {
      std::snprintf(row, sizeof row, "%10zu %10lld  %s\n", k + 1,
                    static_cast<long long>(report.residualLines[k]),
                    FormatNumber(value.get<double>()).c_str());
      out << row;
      ++k;
    }
  }
}

void WriteJson(const nlohmann::ordered_json &body, std::ostream &out) {
  out << body.dump(2) << '\n';
}

}  // namespace quadrel_fit
