// The results of a run as one report: named entries in the order they are
// shown, and optionally a table of rows (one per segment). The text and JSON
// writers both read it, so every form carries the same numbers.
#ifndef QUADREL_FRONTEND_REPORT_H
#define QUADREL_FRONTEND_REPORT_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "quadrel/frontend/peak_fit.h"
#include "quadrel/frontend/shape_fit.h"
#include "quadrel/frontend/trihedral_fit.h"
#include "quadrel/io/point_set.h"

namespace quadrel_frontend {

// One named entry: integers, numbers or texts (one, or a list when list is
// set), or a section of further entries.
struct ReportEntry {
  enum class Type { kInteger, kNumber, kText, kSection };
  std::string key;
  Type type = Type::kNumber;
  bool list = false;
  std::vector<std::int64_t> integers;
  std::vector<double> numbers;
  std::vector<std::string> texts;
  std::vector<ReportEntry> entries;  // a section's
};
using ReportEntries = std::vector<ReportEntry>;

ReportEntry IntegerEntry(std::string key, std::int64_t value);
ReportEntry IntegerListEntry(std::string key, std::vector<std::int64_t> values);
ReportEntry NumberEntry(std::string key, double value);
ReportEntry NumberListEntry(std::string key, std::vector<double> values);
ReportEntry TextEntry(std::string key, std::string value);
ReportEntry TextListEntry(std::string key, std::vector<std::string> values);
ReportEntry SectionEntry(std::string key, ReportEntries entries);

struct Report {
  // What was done, for a header: "sphere fit of points.txt".
  std::string title;
  ReportEntries entries;
  // A table, written after the entries: one row per segment, every row with
  // the same keys.
  std::vector<ReportEntries> rows;
  // With a list of residuals (the "values" of the "residuals" section): the
  // origin (line or record) of each point, for the per-point table, and what
  // the origin counts ("line" or "record").
  std::vector<std::int64_t> residualOrigins;
  std::string originName = "line";
};

// Whether the points come from a format that can hold points without a
// return (PLY, PCD, LAS): reports of such sets say how many were skipped.
bool SkipsPoints(const quadrel_io::PointSet &points);

// Root mean square, largest magnitude and where it is: the summary of the
// residuals of every shape fit. residuals must not be empty.
struct ResidualSummary {
  double rms = 0;
  double maxAbs = 0;
  int maxIndex = 0;  // the point of largest magnitude, from 0 (the first of equals)
};
ResidualSummary SummarizeResiduals(const std::vector<double> &residuals);

// The reports of a successful fit (outcome ok); withResiduals adds the
// residual of every point.
Report ShapeReport(const ShapeFit &fit, const quadrel_io::PointSet &points, bool withResiduals);
Report TrihedralReport(const TrihedralFit &fit,
                       const std::array<const quadrel_io::PointSet *, 3> &faces);
Report PeakReport(const PeakFit &fit, const quadrel_io::PointSet &samples);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_REPORT_H
