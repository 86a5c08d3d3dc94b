#include "quadrel/frontend/report.h"

#include <cmath>
#include <utility>

namespace quadrel_frontend {

using quadrel_io::PointSet;

ReportEntry IntegerEntry(std::string key, std::int64_t value) {
  ReportEntry entry = IntegerListEntry(std::move(key), {value});
  entry.list = false;
  return entry;
}

ReportEntry IntegerListEntry(std::string key, std::vector<std::int64_t> values) {
  ReportEntry entry;
  entry.key = std::move(key);
  entry.type = ReportEntry::Type::kInteger;
  entry.list = true;
  entry.integers = std::move(values);
  return entry;
}

ReportEntry NumberEntry(std::string key, double value) {
  ReportEntry entry = NumberListEntry(std::move(key), {value});
  entry.list = false;
  return entry;
}

ReportEntry NumberListEntry(std::string key, std::vector<double> values) {
  ReportEntry entry;
  entry.key = std::move(key);
  entry.type = ReportEntry::Type::kNumber;
  entry.list = true;
  entry.numbers = std::move(values);
  return entry;
}

ReportEntry TextEntry(std::string key, std::string value) {
  ReportEntry entry = TextListEntry(std::move(key), {std::move(value)});
  entry.list = false;
  return entry;
}

ReportEntry TextListEntry(std::string key, std::vector<std::string> values) {
  ReportEntry entry;
  entry.key = std::move(key);
  entry.type = ReportEntry::Type::kText;
  entry.list = true;
  entry.texts = std::move(values);
  return entry;
}

ReportEntry SectionEntry(std::string key, ReportEntries entries) {
  ReportEntry entry;
  entry.key = std::move(key);
  entry.type = ReportEntry::Type::kSection;
  entry.entries = std::move(entries);
  return entry;
}

ResidualSummary SummarizeResiduals(const std::vector<double> &residuals) {
  double squares = 0.0;
  size_t largest = 0;
  for (size_t k = 0; k < residuals.size(); ++k) {
    squares += residuals[k] * residuals[k];
    if (std::fabs(residuals[k]) > std::fabs(residuals[largest])) largest = k;
  }
  ResidualSummary summary;
  summary.rms = std::sqrt(squares / static_cast<double>(residuals.size()));
  summary.maxAbs = std::fabs(residuals[largest]);
  summary.maxIndex = static_cast<int>(largest);
  return summary;
}

namespace {

std::vector<double> Values(const Vec3 &v) {
  return {v[0], v[1], v[2]};
}

}  // namespace

bool SkipsPoints(const PointSet &points) {
  return points.originKind() == quadrel_io::OriginKind::kRecord;
}

Report ShapeReport(const ShapeFit &fit, const PointSet &points, bool withResiduals) {
  Report report;
  const std::string shape = fit.shape->name;
  report.title = shape + " fit of " + points.name();
  ReportEntries &body = report.entries;
  body.push_back(TextEntry("command", shape));
  body.push_back(TextEntry("file", points.name()));
  body.push_back(IntegerEntry("points", fit.points));
  if (SkipsPoints(points)) body.push_back(IntegerEntry("skipped_points", points.skipped()));
  for (const ResultField &field : fit.fields) {
    body.push_back(field.values.size() == 1 ? NumberEntry(field.name, field.values[0])
                                            : NumberListEntry(field.name, field.values));
  }
  const ResidualSummary summary = SummarizeResiduals(fit.residuals);
  ReportEntries residuals = {NumberEntry("rms", summary.rms),
                             NumberEntry("max_abs", summary.maxAbs),
                             IntegerEntry("max_point", summary.maxIndex + 1),
                             IntegerEntry(SkipsPoints(points) ? "max_record" : "max_line",
                                          points.originOf(summary.maxIndex))};
  if (SkipsPoints(points)) report.originName = "record";
  if (withResiduals) {
    residuals.push_back(NumberListEntry("values", fit.residuals));
    report.residualOrigins.reserve(static_cast<size_t>(points.count()));
    for (int k = 0; k < points.count(); ++k)
      report.residualOrigins.push_back(points.originOf(k));
  }
  body.push_back(SectionEntry("residuals", std::move(residuals)));
  if (!fit.warning.empty()) body.push_back(TextEntry("warning", fit.warning));
  return report;
}

Report TrihedralReport(const TrihedralFit &fit, const std::array<const PointSet *, 3> &faces) {
  Report report;
  report.title =
      "trihedral fit of " + faces[0]->name() + ", " + faces[1]->name() + ", " + faces[2]->name();
  report.entries = {
      TextEntry("command", "trihedral"),
      TextListEntry("files", {faces[0]->name(), faces[1]->name(), faces[2]->name()}),
      IntegerListEntry("points", {fit.points[0], fit.points[1], fit.points[2]}),
      NumberEntry("edge_angle_deg", fit.edgeAngle * kDegrees),
      NumberListEntry("apex", Values(fit.apex)),
      NumberListEntry("angles_rad", Values(fit.angles)),
      NumberListEntry("angles_deg", {fit.angles[0] * kDegrees, fit.angles[1] * kDegrees,
                                     fit.angles[2] * kDegrees}),
      NumberListEntry("axis", Values(fit.axis)),
      NumberEntry("rms", fit.rms),
      NumberEntry("translation_step", fit.translationStep),
      NumberEntry("rotation_step", fit.rotationStep),
      IntegerEntry("code", fit.code),
      TextEntry("status", TrihedralStatus(fit.code))};
  return report;
}

Report PeakReport(const PeakFit &fit, const PointSet &samples) {
  Report report;
  report.title = "quality peak of " + samples.name();
  const int best = fit.bestSample;
  report.entries = {
      TextEntry("command", "peak"),
      TextEntry("file", samples.name()),
      IntegerEntry("samples", fit.samples),
      NumberListEntry("peak", {fit.peak[0], fit.peak[1]}),
      IntegerEntry("code", fit.code),
      TextEntry("method", PeakMethod(fit.code)),
      SectionEntry("best_sample",
                   {NumberListEntry("position", {samples.at(0, best), samples.at(1, best)}),
                    NumberEntry("quality", samples.at(2, best)),
                    IntegerEntry("line", samples.originOf(best))})};
  return report;
}

}  // namespace quadrel_frontend
