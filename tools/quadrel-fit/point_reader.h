// Reading point files: one point per line, three numbers each.
//
// Numbers are separated by spaces, tabs or commas. Empty lines and lines whose
// first visible character is '#' are skipped, and the first remaining line may
// be a header made only of words ("x y z"). Every other line must hold exactly
// three finite numbers. Any fault stops the reading with an InputError whose
// message names the file, the line and the fault.
#ifndef QUADREL_FIT_POINT_READER_H
#define QUADREL_FIT_POINT_READER_H

#include <string>
#include <string_view>
#include <vector>

class CMatrix;

namespace quadrel_fit {

// The points of one file as three rows of n numbers, kept row by row so that a
// 3 x n CMatrix is built from them in one go.
class PointTable {
 public:
  PointTable() = default;
  PointTable(std::string name, std::vector<double> x, std::vector<double> y, std::vector<double> z,
             std::vector<int> lines);

  // The file name as messages show it ("<stdin>" for standard input).
  const std::string &name() const { return name_; }
  int count() const { return static_cast<int>(lines_.size()); }
  // Row r (0, 1 or 2) holds the r-th number of every line, count() values.
  const double *row(int r) const { return values_.data() + static_cast<size_t>(r) * lines_.size(); }
  double at(int r, int k) const { return row(r)[k]; }
  // The line of the file that point k (counting from 0) came from, from 1.
  int lineOf(int k) const { return lines_[static_cast<size_t>(k)]; }

  // All points as a 3 x n matrix, one point per column.
  CMatrix Points() const;
  // Rows 0 and 1 as a 2 x n matrix.
  CMatrix FirstTwoRows() const;
  // Row 2 as an n x 1 column.
  CMatrix ThirdRowAsColumn() const;

 private:
  std::string name_;
  std::vector<double> values_;  // row-major 3 x n
  std::vector<int> lines_;
};

// What the three numbers of a line stand for, for messages: "x y z".
struct ColumnMeaning {
  const char *names;
};
constexpr ColumnMeaning kPointColumns{"x y z"};
constexpr ColumnMeaning kSampleColumns{"x y quality"};

// Parses the text of a point file; name is used in messages.
PointTable ParsePointText(std::string_view text, const std::string &name,
                          ColumnMeaning meaning = kPointColumns);

// Reads a point file; "-" reads standard input.
PointTable ReadPointFile(const std::string &path, ColumnMeaning meaning = kPointColumns);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_POINT_READER_H
