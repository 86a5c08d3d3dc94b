#include "table_output.h"

#include <algorithm>
#include <string>
#include <vector>

#include "quadrel/frontend/format.h"
#include "quadrel/frontend/segment_fit.h"
#include "report.h"

namespace quadrel_fit {

namespace {

using quadrel_frontend::ReportEntries;
using quadrel_frontend::ReportEntry;

// One cell: its text, and whether it is a number (right-aligned in text).
struct Cell {
  std::string text;
  bool number = false;
};

struct Table {
  std::vector<std::string> columns;
  std::vector<std::vector<Cell>> rows;  // a cell per column; empty where absent
};

using Formatter = std::string (*)(double);

// The cells of one entry, with their column names: a list of three as
// name_x, name_y, name_z, a longer one as name_1, name_2, ...
void Flatten(const ReportEntry &entry, const std::string &prefix, Formatter format,
             std::vector<std::pair<std::string, Cell>> &cells) {
  const std::string name = prefix + entry.key;
  if (entry.type == ReportEntry::Type::kSection) {
    for (const ReportEntry &inner : entry.entries)
      Flatten(inner, name + "_", format, cells);
    return;
  }
  const std::size_t count = entry.type == ReportEntry::Type::kInteger  ? entry.integers.size()
                            : entry.type == ReportEntry::Type::kNumber ? entry.numbers.size()
                                                                       : entry.texts.size();
  for (std::size_t i = 0; i < count; ++i) {
    std::string column = name;
    if (entry.list)
      column += count == 3 ? std::string("_") + "xyz"[i] : "_" + std::to_string(i + 1);
    Cell cell;
    switch (entry.type) {
      case ReportEntry::Type::kInteger:
        cell = {std::to_string(entry.integers[i]), true};
        break;
      case ReportEntry::Type::kNumber:
        cell = {format(entry.numbers[i]), true};
        break;
      default:
        cell = {entry.texts[i], false};
        break;
    }
    cells.emplace_back(column, cell);
  }
}

Table MakeTable(const std::vector<ReportEntries> &rows, Formatter format,
                const std::vector<std::string> &leftOut) {
  Table table;
  std::vector<std::vector<std::pair<std::string, Cell>>> flat(rows.size());
  for (std::size_t r = 0; r < rows.size(); ++r)
    for (const ReportEntry &entry : rows[r])
      Flatten(entry, "", format, flat[r]);
  // Columns in the order they first appear; notes at the end.
  for (const auto &row : flat)
    for (const auto &[column, cell] : row)
      if (std::find(table.columns.begin(), table.columns.end(), column) == table.columns.end() &&
          std::find(leftOut.begin(), leftOut.end(), column) == leftOut.end())
        table.columns.push_back(column);
  std::stable_partition(table.columns.begin(), table.columns.end(),
                        [](const std::string &c) { return c != "warning" && c != "reason"; });
  for (const auto &row : flat) {
    std::vector<Cell> cells(table.columns.size());
    for (const auto &[column, cell] : row) {
      const auto at = std::find(table.columns.begin(), table.columns.end(), column);
      if (at != table.columns.end())
        cells[static_cast<std::size_t>(at - table.columns.begin())] = cell;
    }
    table.rows.push_back(std::move(cells));
  }
  return table;
}

std::string CsvField(const std::string &text) {
  if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

}  // namespace

void WriteTextTable(const quadrel_frontend::Report &report, std::ostream &out) {
  quadrel_frontend::Report head = report;
  head.rows.clear();
  WriteText(head, out);
  // The file's skipped points stand above the table already.
  const Table table = MakeTable(report.rows, quadrel_frontend::FormatNumber, {"skipped_in_file"});
  std::vector<std::size_t> width(table.columns.size());
  for (std::size_t c = 0; c < width.size(); ++c) {
    width[c] = table.columns[c].size();
    for (const auto &row : table.rows)
      width[c] = std::max(width[c], row[c].text.size());
  }
  auto line = [&](const std::vector<Cell> &cells) {
    std::string text;
    for (std::size_t c = 0; c < cells.size(); ++c) {
      const bool last = c + 1 == cells.size();
      const std::string pad(width[c] - cells[c].text.size(), ' ');
      if (c > 0) text += "  ";
      text += cells[c].number ? pad + cells[c].text : cells[c].text + (last ? "" : pad);
    }
    while (!text.empty() && text.back() == ' ')
      text.pop_back();
    out << text << '\n';
  };
  std::vector<Cell> header;
  for (const std::string &column : table.columns)
    header.push_back({column, false});
  line(header);
  for (const auto &row : table.rows)
    line(row);
}

void WriteCsv(const quadrel_frontend::Report &report, std::ostream &out) {
  const std::vector<ReportEntries> single = {report.entries};
  const Table table = MakeTable(report.rows.empty() ? single : report.rows,
                                quadrel_frontend::FormatKey, {"command"});
  auto line = [&out](const std::vector<std::string> &fields) {
    for (std::size_t c = 0; c < fields.size(); ++c)
      out << (c > 0 ? "," : "") << CsvField(fields[c]);
    out << '\n';
  };
  line(table.columns);
  for (const auto &row : table.rows) {
    std::vector<std::string> fields;
    for (const Cell &cell : row)
      fields.push_back(cell.text);
    line(fields);
  }
}

void WriteJsonLines(const quadrel_frontend::Report &report, std::ostream &out) {
  for (const ReportEntries &row : report.rows) {
    quadrel_frontend::Report one;
    one.entries = row;
    out << ToJson(one).dump() << '\n';
  }
}

}  // namespace quadrel_fit
