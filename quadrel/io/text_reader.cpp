#include "quadrel/io/text_reader.h"

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "quadrel/io/read_error.h"

namespace quadrel_io {

namespace {

enum class Field { kNumber, kWord, kNotFinite, kTooLarge };

// Reads one field as a double. A leading '+' is allowed; the whole field must
// be the number.
Field ParseField(std::string_view field, double &value) {
  std::string_view digits = field;
  if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-' && digits[1] != '+') {
    digits.remove_prefix(1);
  }
  const char *end = digits.data() + digits.size();
  auto [stop, error] = std::from_chars(digits.data(), end, value, std::chars_format::general);
  if (error == std::errc::invalid_argument || stop != end) return Field::kWord;
  if (error == std::errc::result_out_of_range) {
    // from_chars reports both overflow and underflow; a value too small for a
    // double is read as strtod reads it (0 or a subnormal), a value too large
    // is refused.
    std::string copy(digits);
    value = std::strtod(copy.c_str(), nullptr);
    if (std::isinf(value)) return Field::kTooLarge;
  }
  return std::isfinite(value) ? Field::kNumber : Field::kNotFinite;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

// A field as it may appear in a message: at most 40 characters.
std::string Shown(std::string_view field) {
  if (field.size() <= 40) return std::string(field);
  return std::string(field.substr(0, 37)) + "...";
}

// Splits a line into fields at blanks and commas. Blanks around a comma are
// part of the separator; two commas with nothing between them, or a comma at
// either end of the line, leave an empty field, which is refused.
void SplitFields(std::string_view line, const std::string &name, std::int64_t lineNumber,
                 std::vector<std::string_view> &fields) {
  fields.clear();
  bool commaPending = false;
  size_t i = 0;
  while (i < line.size()) {
    char c = line[i];
    if (IsBlank(c)) {
      ++i;
    } else if (c == ',') {
      if (fields.empty() || commaPending) {
        throw ReadError(name, lineNumber, "empty field before a comma");
      }
      commaPending = true;
      ++i;
    } else {
      size_t j = i;
      while (j < line.size() && !IsBlank(line[j]) && line[j] != ',')
        ++j;
      fields.push_back(line.substr(i, j - i));
      commaPending = false;
      i = j;
    }
  }
  if (commaPending) throw ReadError(name, lineNumber, "empty field after the last comma");
}

}  // namespace

PointSet ParsePointText(std::string_view text, const std::string &name,
                        const ReadOptions &options) {
  std::vector<double> columns[3];
  std::vector<std::int64_t> lines;
  bool headerAllowed = true;
  std::vector<std::string_view> fields;
  std::int64_t lineNumber = 0;
  // A byte order mark, as some editors write at the start of UTF-8 files.
  size_t start = text.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;
  while (start < text.size()) {
    size_t stop = text.find('\n', start);
    if (stop == std::string_view::npos) stop = text.size();
    std::string_view line = text.substr(start, stop - start);
    start = stop + 1;
    ++lineNumber;

    size_t first = 0;
    while (first < line.size() && IsBlank(line[first]))
      ++first;
    if (first == line.size() || line[first] == '#') continue;

    SplitFields(line, name, lineNumber, fields);
    // The first line that holds anything may name the columns.
    if (headerAllowed) {
      headerAllowed = false;
      bool allWords = true;
      for (std::string_view field : fields) {
        double ignoredValue = 0.0;
        if (ParseField(field, ignoredValue) != Field::kWord) allWords = false;
      }
      if (allWords) continue;
    }
    double values[3] = {0.0, 0.0, 0.0};
    for (size_t f = 0; f < fields.size(); ++f) {
      double value = 0.0;
      switch (ParseField(fields[f], value)) {
        case Field::kWord:
          throw ReadError(name, lineNumber, "'" + Shown(fields[f]) + "' is not a number");
        case Field::kNotFinite:
          throw ReadError(name, lineNumber,
                          "'" + Shown(fields[f]) +
                              "' is not a finite number (NaN and infinity are not allowed)");
        case Field::kTooLarge:
          throw ReadError(name, lineNumber, "'" + Shown(fields[f]) + "' is too large for a double");
        case Field::kNumber:
          if (f < 3) values[f] = value;
          break;
      }
    }
    if (fields.size() != 3) {
      throw ReadError(name, lineNumber,
                      std::string("expected 3 numbers (") + options.columnNames + "), found " +
                          std::to_string(fields.size()));
    }
    if (lines.size() >= static_cast<size_t>(INT_MAX / 3)) {
      throw ReadError(
          name, lineNumber,
          "too many points; at most " + std::to_string(INT_MAX / 3) + " fit in one matrix");
    }
    for (int r = 0; r < 3; ++r)
      columns[r].push_back(values[r]);
    lines.push_back(lineNumber);
  }
  return PointSet(name, std::move(columns[0]), std::move(columns[1]), std::move(columns[2]),
                  std::move(lines));
}

}  // namespace quadrel_io
