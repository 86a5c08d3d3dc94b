#include "report.h"

#include <cstdio>

#include "quadrel/frontend/format.h"

namespace quadrel_fit {

namespace {

using Json = nlohmann::ordered_json;
using quadrel_frontend::FormatNumber;
using quadrel_frontend::kTextDigits;
using quadrel_frontend::ReportEntries;
using quadrel_frontend::ReportEntry;

template <typename T>
Json Values(const std::vector<T> &values, bool list) {
  return list ? Json(values) : Json(values[0]);
}

Json Object(const ReportEntries &entries) {
  Json object = Json::object();
  for (const ReportEntry &entry : entries) {
    switch (entry.type) {
      case ReportEntry::Type::kInteger:
        object[entry.key] = Values(entry.integers, entry.list);
        break;
      case ReportEntry::Type::kNumber:
        object[entry.key] = Values(entry.numbers, entry.list);
        break;
      case ReportEntry::Type::kText:
        object[entry.key] = Values(entry.texts, entry.list);
        break;
      case ReportEntry::Type::kSection:
        object[entry.key] = Object(entry.entries);
        break;
    }
  }
  return object;
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

Json ToJson(const quadrel_frontend::Report &report) {
  Json body = Object(report.entries);
  if (!report.rows.empty()) {
    Json rows = Json::array();
    for (const ReportEntries &row : report.rows)
      rows.push_back(Object(row));
    body["rows"] = rows;
  }
  return body;
}

std::string TextHeader(const std::string &title) {
  return "# quadrel-fit " QUADREL_FIT_VERSION ": " + title + "; numbers rounded to " +
         std::to_string(kTextDigits) + " significant digits";
}

void WriteText(const quadrel_frontend::Report &report, std::ostream &out) {
  const Json body = ToJson(report);
  out << TextHeader(report.title) << '\n';
  WriteFields(body, 0, out);
  const Json *residuals = nullptr;
  if (body.contains("residuals") && body["residuals"].contains("values")) {
    residuals = &body["residuals"]["values"];
  }
  if (residuals != nullptr) {
    out << "residual per point\n";
    char row[96];
    std::snprintf(row, sizeof row, "%10s %10s  %s\n", "point", report.originName.c_str(),
                  "residual");
    out << row;
    size_t k = 0;
    for (const Json &value : *residuals) {
      std::snprintf(row, sizeof row, "%10zu %10lld  %s\n", k + 1,
                    static_cast<long long>(report.residualOrigins[k]),
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
