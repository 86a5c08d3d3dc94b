#include "point_reader.h"

#include <cerrno>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include <quadrel/quadrel.h>

#include "errors.h"

namespace quadrel_fit {

PointTable::PointTable(std::string name, std::vector<double> x, std::vector<double> y,
                       std::vector<double> z, std::vector<int> lines)
    : name_(std::move(name)), lines_(std::move(lines)) {
  values_.reserve(x.size() * 3);
  values_.insert(values_.end(), x.begin(), x.end());
  values_.insert(values_.end(), y.begin(), y.end());
  values_.insert(values_.end(), z.begin(), z.end());
}

CMatrix PointTable::Points() const {
  return CMatrix(values_.data(), 3, count());
}

CMatrix PointTable::FirstTwoRows() const {
  return CMatrix(values_.data(), 2, count());
}

CMatrix PointTable::ThirdRowAsColumn() const {
  return CMatrix(row(2), count(), 1);
}

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

// "file:line: ", the start of every message about a line.
std::string Where(const std::string &name, int lineNumber) {
  return name + ":" + std::to_string(lineNumber) + ": ";
}

// Splits a line into fields at blanks and commas. Blanks around a comma are
// part of the separator; two commas with nothing between them, or a comma at
// either end of the line, leave an empty field, which is refused.
void SplitFields(std::string_view line, const std::string &name, int lineNumber,
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
        throw InputError(Where(name, lineNumber) + "empty field before a comma");
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
  if (commaPending) throw InputError(Where(name, lineNumber) + "empty field after the last comma");
}

}  // namespace

PointTable ParsePointText(std::string_view text, const std::string &name, ColumnMeaning meaning) {
  std::vector<double> columns[3];
  std::vector<int> lines;
  bool headerAllowed = true;
  std::vector<std::string_view> fields;
  int lineNumber = 0;
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
          throw InputError(Where(name, lineNumber) + "'" + Shown(fields[f]) + "' is not a number");
        case Field::kNotFinite:
          throw InputError(Where(name, lineNumber) + "'" + Shown(fields[f]) +
                           "' is not a finite number (NaN and infinity are not allowed)");
        case Field::kTooLarge:
          throw InputError(Where(name, lineNumber) + "'" + Shown(fields[f]) +
                           "' is too large for a double");
        case Field::kNumber:
          if (f < 3) values[f] = value;
          break;
      }
    }
    if (fields.size() != 3) {
      throw InputError(Where(name, lineNumber) + "expected 3 numbers (" + meaning.names +
                       "), found " + std::to_string(fields.size()));
    }
    if (lines.size() >= static_cast<size_t>(INT_MAX / 3)) {
      throw InputError(Where(name, lineNumber) + "too many points; at most " +
                       std::to_string(INT_MAX / 3) + " fit in one matrix");
    }
    for (int r = 0; r < 3; ++r)
      columns[r].push_back(values[r]);
    lines.push_back(lineNumber);
  }
  return PointTable(name, std::move(columns[0]), std::move(columns[1]), std::move(columns[2]),
                    std::move(lines));
}

PointTable ReadPointFile(const std::string &path, ColumnMeaning meaning) {
  const bool standardInput = path == "-";
  const std::string name = standardInput ? "<stdin>" : path;
  std::error_code ignored;
  if (!standardInput && std::filesystem::is_directory(path, ignored)) {
    throw InputError("cannot read " + name + ": it is a directory");
  }
  std::FILE *file = standardInput ? stdin : std::fopen(path.c_str(), "rb");
  if (file == nullptr) throw InputError("cannot open " + name + ": " + std::strerror(errno));

  // One pass over the file in large blocks; the text is parsed afterwards.
  std::string text;
  std::vector<char> block(1 << 20);
  size_t got = 0;
  while ((got = std::fread(block.data(), 1, block.size(), file)) > 0)
    text.append(block.data(), got);
  const bool failed = std::ferror(file) != 0;
  const int error = errno;
  if (!standardInput) std::fclose(file);
  if (failed) throw InputError("cannot read " + name + ": " + std::strerror(error));
  return ParsePointText(text, name, meaning);
}

}  // namespace quadrel_fit
