// The results of a command as one report, written either as text for a person
// or as JSON for a script. Both forms come from the same ordered JSON object,
// so they always carry the same numbers.
#ifndef QUADREL_FIT_REPORT_H
#define QUADREL_FIT_REPORT_H

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "fits.h"
#include "point_input.h"

namespace quadrel_fit {

// Significant digits of the numbers in text output.
constexpr int kTextDigits = 6;

struct Report {
  // What was done, for the text header: "sphere fit of points.txt".
  std::string title;
  // The results; keys in the order they are shown. An object under
  // "residuals" may hold "values", one residual per point, which the text form
  // writes as a table with the file line of each point.
  nlohmann::ordered_json body;
  std::vector<std::int64_t> residualLines;
};

Report ShapeReport(const ShapeResult &result, const PointSet &table, bool withResiduals);
Report TrihedralReport(const TrihedralResult &result, const std::array<const PointSet *, 3> &faces);
Report PeakReport(const PeakResult &result, const PointSet &samples);

// Text: a header line that names the tool, the work and the precision, then
// one "name  value" line per result.
void WriteText(const Report &report, std::ostream &out);
// JSON: the body, with every number written so that it reads back to the same
// double.
void WriteJson(const nlohmann::ordered_json &body, std::ostream &out);

// A number as the text form shows it, to kTextDigits significant digits.
std::string FormatNumber(double value);
// The numbers of a vector, each formatted, separated by single blanks.
std::string FormatVector(const double *values, int count);

// The header line of text output, without its newline.
std::string TextHeader(const std::string &title);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_REPORT_H
