#include "quadrel/io/text_scan.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace quadrel_io {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

}  // namespace

bool TextScan::NextLine(std::string_view &line) {
  if (position_ >= content_.size()) return false;
  line_ = newlines_ + 1;
  std::size_t stop = content_.find('\n', position_);
  if (stop == std::string_view::npos) {
    stop = content_.size();
  } else {
    ++newlines_;
  }
  line = content_.substr(position_, stop - position_);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  // Past the newline, or at the end when the last line has none: never
  // beyond the content, which callers take as where the next bytes start.
  position_ = stop < content_.size() ? stop + 1 : stop;
  return true;
}

bool TextScan::NextWord(std::string_view &word) {
  const std::size_t size = content_.size();
  while (position_ < size && (IsBlank(content_[position_]) || content_[position_] == '\n')) {
    if (content_[position_] == '\n') ++newlines_;
    ++position_;
  }
  if (position_ >= size) return false;
  line_ = newlines_ + 1;
  const std::size_t start = position_;
  while (position_ < size && !IsBlank(content_[position_]) && content_[position_] != '\n')
    ++position_;
  word = content_.substr(start, position_ - start);
  return true;
}

std::vector<std::string_view> SplitWords(std::string_view line) {
  std::vector<std::string_view> words;
  std::size_t i = 0;
  while (i < line.size()) {
    if (IsBlank(line[i])) {
      ++i;
      continue;
    }
    std::size_t j = i;
    while (j < line.size() && !IsBlank(line[j]))
      ++j;
    words.push_back(line.substr(i, j - i));
    i = j;
  }
  return words;
}

bool ParseNumber(std::string_view word, double &value) {
  if (word.size() > 1 && word[0] == '+' && word[1] != '-' && word[1] != '+') word.remove_prefix(1);
  const char *end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value, std::chars_format::general);
  if (error == std::errc::invalid_argument || stop != end) return false;
  if (error == std::errc::result_out_of_range) {
    // Overflow and underflow alike; strtod tells them apart.
    const std::string copy(word);
    value = std::strtod(copy.c_str(), nullptr);
  }
  return true;
}

bool ParseCount(std::string_view word, std::int64_t limit, std::int64_t &value) {
  const char *end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value);
  return error == std::errc() && stop == end && value >= 0 && value <= limit;
}

}  // namespace quadrel_io
