// Reports as tables: the rows of a report (one per segment) or a single fit
// as one row, written as an aligned text table, as CSV with a header, or as
// JSON Lines (one object per row).
#ifndef QUADREL_FIT_TABLE_OUTPUT_H
#define QUADREL_FIT_TABLE_OUTPUT_H

#include <ostream>

#include "quadrel/frontend/report.h"

namespace quadrel_fit {

// The header line, the entries as "name  value" lines, then the rows as a
// table: a column per value (vectors as name_x, name_y, name_z), numbers to
// six significant digits, a blank cell where a row has no such value, and
// warning and reason last.
void WriteTextTable(const quadrel_frontend::Report &report, std::ostream &out);
// The rows as CSV: a header line of column names, then one line per row,
// every number in the shortest form that reads back to the same double. A
// report without rows is written as one row of its entries (sections as
// section_key).
void WriteCsv(const quadrel_frontend::Report &report, std::ostream &out);
// One JSON object per row and line, its keys in the row's order.
void WriteJsonLines(const quadrel_frontend::Report &report, std::ostream &out);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_TABLE_OUTPUT_H
