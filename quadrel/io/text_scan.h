// Scanning the text parts of point files: the header lines of PLY and PCD
// and the numbers of their ASCII bodies.
#ifndef QUADREL_IO_TEXT_SCAN_H
#define QUADREL_IO_TEXT_SCAN_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quadrel_io {

// Walks content line by line and word by word from a byte position, counting
// lines from 1.
class TextScan {
 public:
  explicit TextScan(std::string_view content, std::size_t position = 0)
      : content_(content), position_(position) {}

  // The next line without its end ("\n" or "\r\n"); false at the end of the
  // content. line() is then its number and position() the byte after it.
  bool NextLine(std::string_view &line);
  // The next word separated by blanks or line ends; false at the end of the
  // content. line() is the line the word stands on.
  bool NextWord(std::string_view &word);

  std::int64_t line() const { return line_; }
  std::size_t position() const { return position_; }

 private:
  std::string_view content_;
  std::size_t position_;
  std::int64_t line_ = 0;
  std::int64_t newlines_ = 0;  // line ends passed so far
};

// The words of a line, separated by blanks.
std::vector<std::string_view> SplitWords(std::string_view line);

// Reads a whole word as a number: decimal or exponent form, an optional sign,
// and "nan" or "inf" in any case. Values beyond the range of a double read as
// infinite. False when the word is not a number.
bool ParseNumber(std::string_view word, double &value);

// Reads a whole word as a count, a decimal integer from 0 to limit.
bool ParseCount(std::string_view word, std::int64_t limit, std::int64_t &value);

}  // namespace quadrel_io

#endif  // QUADREL_IO_TEXT_SCAN_H
