#include "quadrel/frontend/segment_fit.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <unordered_map>
#include <utility>

namespace quadrel_frontend {

using quadrel_io::PointSet;

bool SegmentFits::AllFitted() const {
  if (!outcome.ok() || segments.empty()) return false;
  for (const SegmentFit &segment : segments)
    if (!segment.fit.outcome.ok()) return false;
  return true;
}

std::string FormatKey(double key) {
  if (key == 0.0) key = 0.0;
  char text[40];
  for (int digits = 1; digits <= 17; ++digits) {
    std::snprintf(text, sizeof text, "%.*g", digits, key);
    if (std::strtod(text, nullptr) == key) break;
  }
  return text;
}

namespace {

SegmentFits Refused(SegmentFits fits, std::string reason) {
  fits.outcome = Outcome::Refused(Status::kBadInput, std::move(reason));
  fits.segments.clear();
  return fits;
}

// The values of the column, count() of them, or nullptr when it is absent.
const double *ColumnValues(const PointSet &points, const std::string &column) {
  if (column == "x" || column == "y" || column == "z") return points.axis(column[0] - 'x');
  const quadrel_io::ExtraColumn *extra = points.FindColumn(column);
  return extra == nullptr ? nullptr : extra->values.data();
}

std::string ColumnList(const PointSet &points) {
  if (points.columns().empty()) return "it has no columns besides x, y and z";
  std::string names;
  for (const quadrel_io::ExtraColumn &extra : points.columns())
    names += (names.empty() ? "" : ", ") + extra.name;
  return "its columns besides x, y and z are: " + names;
}

}  // namespace

SegmentFits FitSegments(const ShapeEntry &shape, const PointSet &points,
                        const std::string &column) {
  SegmentFits fits;
  fits.column = column;
  const double *keys = ColumnValues(points, column);
  if (keys == nullptr) {
    return Refused(std::move(fits), points.name() + " has no column '" + column +
                                        "' to segment by; " + ColumnList(points));
  }
  const int n = points.count();
  if (n == 0) return Refused(std::move(fits), points.name() + " holds no points to segment");
  // The members of each segment, segments in the order of their first point.
  std::vector<std::vector<std::int64_t>> members;
  std::unordered_map<double, std::size_t> index;
  for (int k = 0; k < n; ++k) {
    double key = keys[k];
    if (!std::isfinite(key)) {
      return Refused(std::move(fits), points.name() + ": the " + column + " of point " +
                                          std::to_string(points.originOf(k)) +
                                          " is not a finite number; segment keys must be numbers");
    }
    if (key == 0.0) key = 0.0;  // -0 and 0 are one segment
    const auto [at, added] = index.try_emplace(key, members.size());
    if (added) {
      members.emplace_back();
      fits.segments.push_back({key, 0, {}, 0, 0});
    }
    members[at->second].push_back(k);
  }
  for (std::size_t s = 0; s < members.size(); ++s) {
    SegmentFit &segment = fits.segments[s];
    const PointSet subset = points.Select(
        members[s], points.name() + " (" + column + " " + FormatKey(segment.key) + ")");
    segment.points = subset.count();
    segment.fit = FitShape(shape, subset);
    if (segment.fit.outcome.ok()) {
      const ResidualSummary summary = SummarizeResiduals(segment.fit.residuals);
      segment.rms = summary.rms;
      segment.maxAbs = summary.maxAbs;
    }
  }
  return fits;
}

Report SegmentReport(const ShapeEntry &shape, const SegmentFits &fits, const PointSet &points) {
  Report report;
  report.title = std::string(shape.name) + " fit of " + points.name() + " per " + fits.column;
  int fitted = 0;
  for (const SegmentFit &segment : fits.segments)
    fitted += segment.fit.outcome.ok() ? 1 : 0;
  report.entries = {TextEntry("command", shape.name), TextEntry("file", points.name()),
                    TextEntry("segment_by", fits.column), IntegerEntry("points", points.count())};
  if (SkipsPoints(points))
    report.entries.push_back(IntegerEntry("skipped_points", points.skipped()));
  report.entries.push_back(
      IntegerEntry("segments", static_cast<std::int64_t>(fits.segments.size())));
  report.entries.push_back(IntegerEntry("fitted", fitted));
  for (const SegmentFit &segment : fits.segments) {
    ReportEntries row;
    const double key = segment.key;
    if (std::fabs(key) < 9007199254740992.0 && key == std::trunc(key)) {
      row.push_back(IntegerEntry(fits.column, static_cast<std::int64_t>(key)));
    } else {
      row.push_back(NumberEntry(fits.column, key));
    }
    row.push_back(IntegerEntry("points", segment.points));
    // The file's count on every row, so that a table or JSON Lines alone
    // still says that points were left out.
    if (SkipsPoints(points)) row.push_back(IntegerEntry("skipped_in_file", points.skipped()));
    row.push_back(TextEntry("status", StatusName(segment.fit.outcome.status)));
    if (segment.fit.outcome.ok()) {
      for (const ResultField &field : segment.fit.fields) {
        row.push_back(field.values.size() == 1 ? NumberEntry(field.name, field.values[0])
                                               : NumberListEntry(field.name, field.values));
      }
      row.push_back(NumberEntry("rms", segment.rms));
      row.push_back(NumberEntry("max_abs", segment.maxAbs));
      if (!segment.fit.warning.empty()) row.push_back(TextEntry("warning", segment.fit.warning));
    } else {
      row.push_back(TextEntry("reason", segment.fit.outcome.reason));
    }
    report.rows.push_back(std::move(row));
  }
  return report;
}

}  // namespace quadrel_frontend
