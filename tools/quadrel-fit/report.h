// Reports written either as text for a person or as JSON for a script. Both
// forms come from the same ordered JSON object, so they always carry the same
// numbers.
#ifndef QUADREL_FIT_REPORT_H
#define QUADREL_FIT_REPORT_H

#include <ostream>
#include <string>

#include <nlohmann/json.hpp>

#include "quadrel/frontend/report.h"

namespace quadrel_fit {

// The report as one JSON object: its entries in order, then its table (if
// any) under "rows", one object per row.
nlohmann::ordered_json ToJson(const quadrel_frontend::Report &report);

// Text: a header line that names the tool, the work and the precision, then
// one "name  value" line per result, and the residual of every point when the
// report lists them.
void WriteText(const quadrel_frontend::Report &report, std::ostream &out);
// JSON: the body, with every number written so that it reads back to the same
// double.
void WriteJson(const nlohmann::ordered_json &body, std::ostream &out);

// The header line of text output, without its newline.
std::string TextHeader(const std::string &title);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_REPORT_H
