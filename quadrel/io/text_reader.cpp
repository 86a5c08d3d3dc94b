#include "quadrel/io/text_reader.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "quadrel/io/large_buffer.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/shown_bytes.h"

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

// A field as it may appear in a message: at most 40 characters, bytes that
// are not printable escaped.
std::string Shown(std::string_view field) {
  return ShownBytes(field, 40);
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

// Splits a line at semicolons, as spreadsheets write text in locales whose
// decimal mark is a comma ("1,25;3,5;-0,75"): blanks round a field are
// dropped and its commas become points. The fields are copies in `held`.
void SplitSemicolonFields(std::string_view line, const std::string &name, std::int64_t lineNumber,
                          std::vector<std::string> &held, std::vector<std::string_view> &fields) {
  held.clear();
  std::size_t start = 0;
  while (true) {
    std::size_t stop = line.find(';', start);
    const bool last = stop == std::string_view::npos;
    if (last) stop = line.size();
    std::string_view field = line.substr(start, stop - start);
    while (!field.empty() && IsBlank(field.front()))
      field.remove_prefix(1);
    while (!field.empty() && IsBlank(field.back()))
      field.remove_suffix(1);
    if (field.empty()) {
      throw ReadError(
          name, lineNumber,
          last ? "empty field after the last semicolon" : "empty field before a semicolon");
    }
    held.emplace_back(field);
    for (char &c : held.back())
      if (c == ',') c = '.';
    if (last) break;
    start = stop + 1;
  }
  fields.assign(held.begin(), held.end());
}

}  // namespace

PointSet ParsePointText(std::string_view text, const std::string &name,
                        const ReadOptions &options) {
  // The coordinates go straight into one block, axis by axis, with room for
  // `room` points; y and z move down next to x at the end.
  std::vector<double> xyz;
  std::vector<std::int64_t> lines;
  bool headerAllowed = true;
  bool semicolons = false;
  std::vector<std::string_view> fields;
  std::vector<std::string> held;
  // A header of more than three words names the columns of every line: x, y
  // and z are the columns of those names, or else the first three, and every
  // other column is kept under its name.
  std::vector<std::string> header;
  std::vector<std::vector<double>> extras;
  int axes[3] = {0, 1, 2};
  std::vector<int> extraOf;  // column -> index into extras, or -1
  std::string expected = options.columnNames;
  std::int64_t lineNumber = 0;
  // Room for a point on every line, taken before the first is written; a
  // point takes 6 bytes at least ("0 0 0" and a line end), which bounds the
  // room when most lines are blank.
  const std::size_t room =
      std::min(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1,
               (text.size() + 1) / 6);
  ReserveLarge(xyz, 3 * room);
  xyz.resize(3 * room);
  ReserveLarge(lines, room);
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

    // The first line that holds anything decides the separator.
    if (headerAllowed) semicolons = line.find(';') != std::string_view::npos;
    if (semicolons) {
      SplitSemicolonFields(line, name, lineNumber, held, fields);
    } else {
      SplitFields(line, name, lineNumber, fields);
    }
    // The first line that holds anything may name the columns.
    if (headerAllowed) {
      headerAllowed = false;
      bool allWords = true;
      for (std::string_view field : fields) {
        double ignoredValue = 0.0;
        if (ParseField(field, ignoredValue) != Field::kWord) allWords = false;
      }
      if (allWords) {
        if (fields.size() > 3) {
          header.assign(fields.begin(), fields.end());
          const char *const names[3] = {"x", "y", "z"};
          int found[3] = {-1, -1, -1};
          for (int r = 0; r < 3; ++r)
            for (size_t f = 0; f < header.size() && found[r] < 0; ++f)
              if (header[f] == names[r]) found[r] = static_cast<int>(f);
          if (found[0] >= 0 && found[1] >= 0 && found[2] >= 0) std::copy(found, found + 3, axes);
          extraOf.assign(header.size(), -1);
          for (size_t f = 0; f < header.size(); ++f) {
            if (static_cast<int>(f) == axes[0] || static_cast<int>(f) == axes[1] ||
                static_cast<int>(f) == axes[2])
              continue;
            extraOf[f] = static_cast<int>(extras.size());
            extras.emplace_back();
          }
          expected.clear();
          for (const std::string &word : header)
            expected += (expected.empty() ? "" : " ") + Shown(word);
        }
        continue;
      }
    }
    const size_t width = header.empty() ? 3 : header.size();
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
          if (f >= width) break;
          if (header.empty()) {
            values[f] = value;
          } else if (extraOf[f] >= 0) {
            extras[static_cast<size_t>(extraOf[f])].push_back(value);
          } else {
            values[f == static_cast<size_t>(axes[0])   ? 0
                   : f == static_cast<size_t>(axes[1]) ? 1
                                                       : 2] = value;
          }
          break;
      }
    }
    if (fields.size() != width) {
      throw ReadError(name, lineNumber,
                      "expected " + std::to_string(width) + " numbers (" + expected + "), found " +
                          std::to_string(fields.size()));
    }
    if (lines.size() >= static_cast<size_t>(INT_MAX / 3)) {
      throw ReadError(
          name, lineNumber,
          "too many points; at most " + std::to_string(INT_MAX / 3) + " fit in one matrix");
    }
    const std::size_t point = lines.size();
    for (std::size_t r = 0; r < 3; ++r)
      xyz[r * room + point] = values[r];
    lines.push_back(lineNumber);
  }
  const std::size_t count = lines.size();
  if (count < room) {
    for (std::size_t r = 1; r < 3; ++r)
      std::copy(xyz.begin() + static_cast<std::ptrdiff_t>(r * room),
                xyz.begin() + static_cast<std::ptrdiff_t>(r * room + count),
                xyz.begin() + static_cast<std::ptrdiff_t>(r * count));
    xyz.resize(3 * count);
    // Most of the room went unused (a file of comments, say): give it back.
    if (count < room / 2) xyz.shrink_to_fit();
  }
  PointSet set(name, std::move(xyz), std::move(lines), OriginKind::kLine);
  for (size_t f = 0; f < extraOf.size(); ++f)
    if (extraOf[f] >= 0)
      set.AddColumn(header[f], std::move(extras[static_cast<size_t>(extraOf[f])]));
  return set;
}

}  // namespace quadrel_io
