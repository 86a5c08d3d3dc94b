// A set of points read from a file: x, y and z of every point, optional named
// columns of further numbers (labels, intensities, ...), the name of the
// source as messages show it, and where in the source each point came from.
#ifndef QUADREL_IO_POINT_SET_H
#define QUADREL_IO_POINT_SET_H

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quadrel_io {

// What the origin of a point counts: the line of a text file, or the record
// of a binary file (its index among the file's points, NaN points included);
// both from 1.
enum class OriginKind { kLine, kRecord };

// A named column of one number per point, in the order of the points.
struct ExtraColumn {
  std::string name;
  std::vector<double> values;
};

// The coordinates are kept axis by axis in one block: all x, then all y, then
// all z, so a 3 x n row-major matrix or the columns of an (n, 3) array are
// filled from it with three copies.
class PointSet {
 public:
  PointSet() = default;
  // Takes the coordinates, one vector per axis, and the origin of each point;
  // all four vectors must have the same length.
  PointSet(std::string name, std::vector<double> x, std::vector<double> y, std::vector<double> z,
           std::vector<std::int64_t> origins, OriginKind originKind = OriginKind::kLine);
  // Takes the coordinates as one block, all x, then all y, then all z: 3
  // values per origin.
  PointSet(std::string name, std::vector<double> xyz, std::vector<std::int64_t> origins,
           OriginKind originKind);
  // Takes the coordinates as one block, as above, of points that came from
  // records 1, 2, 3, ... in turn: point k from record k + 1.
  PointSet(std::string name, std::vector<double> xyz);

  // The points numbered in `numbers` (each in 0..count()-1), in that order,
  // with their coordinates, origins and origin kind, under a new name; no
  // columns, no skipped records, no grid.
  PointSet Select(const std::vector<std::int64_t> &numbers, std::string name) const;

  // The source as messages show it: the path, or "<stdin>".
  const std::string &name() const { return name_; }
  int count() const { return static_cast<int>(count_); }
  // 3 * count() numbers: x of every point, then y, then z.
  const double *coordinates() const { return values_.data(); }
  // Axis r (0 for x, 1 for y, 2 for z) of every point, count() values.
  const double *axis(int r) const { return values_.data() + static_cast<std::size_t>(r) * count_; }
  // Axis r of point k; r in 0..2, k in 0..count()-1.
  double at(int r, int k) const { return axis(r)[k]; }
  // Where point k came from (see originKind()), from 1.
  std::int64_t originOf(int k) const {
    return inTurn_ ? std::int64_t{k} + 1 : origins_[static_cast<std::size_t>(k)];
  }
  // The origin of every point, count() values.
  const std::vector<std::int64_t> &origins() const;
  OriginKind originKind() const { return originKind_; }

  // The format the points were read from: "text", "ply", "pcd" or "las"
  // (empty for sets made in memory).
  const std::string &format() const { return format_; }
  void setFormat(std::string format) { format_ = std::move(format); }
  // Records of the file left out because x, y or z was not finite (a pixel or
  // pulse without a return); 0 for text, which refuses such values.
  std::int64_t skipped() const { return skipped_; }
  void setSkipped(std::int64_t skipped) { skipped_ = skipped; }

  // An organized cloud is a grid of width x height records stored row by row
  // (a depth image); width() is 0 for any other set. For an organized set,
  // rowOf(k) and columnOf(k) give the pixel of point k, from 0.
  void setGrid(std::int64_t width, std::int64_t height) {
    width_ = width;
    height_ = height;
  }
  bool organized() const { return width_ > 0; }
  std::int64_t width() const { return width_; }
  std::int64_t height() const { return height_; }
  std::int64_t rowOf(int k) const { return (originOf(k) - 1) / width_; }
  std::int64_t columnOf(int k) const { return (originOf(k) - 1) % width_; }

  // Adds a named column; values must hold count() numbers and the name must
  // be new (the column is not added otherwise, and false comes back).
  bool AddColumn(std::string name, std::vector<double> values);
  // Makes the values of a column from the origins of the points, or from an
  // empty vector when point k came from record k + 1 for every k: count()
  // numbers, in the order of the points.
  using ColumnMaker = std::function<std::vector<double>(const std::vector<std::int64_t> &origins)>;
  // Adds a named column whose values are made when first asked for, by
  // FindColumn or columns(), so that a column nobody asks for costs nothing.
  // The name must be new (false comes back otherwise).
  bool AddColumn(std::string name, ColumnMaker make);
  // The column of that name, or nullptr when there is none.
  const ExtraColumn *FindColumn(std::string_view name) const;
  // Every column, in the order they were added.
  const std::vector<ExtraColumn> &columns() const;

 private:
  std::string name_;
  std::vector<double> values_;
  std::size_t count_ = 0;
  // Set when point k came from record k + 1 for every k; origins_ is then
  // filled only when origins() is first asked for, under the lock.
  bool inTurn_ = false;
  mutable std::vector<std::int64_t> origins_;
  OriginKind originKind_ = OriginKind::kLine;
  std::string format_;
  std::int64_t skipped_ = 0;
  std::int64_t width_ = 0;
  std::int64_t height_ = 0;
  // Makes the values of column c if they are still to be made.
  void MakeColumn(std::size_t c) const;
  std::size_t ColumnIndex(std::string_view name) const;

  // A mutex that a copied or moved set gets afresh.
  struct Lock {
    Lock() = default;
    Lock(const Lock &) {}
    Lock &operator=(const Lock &) { return *this; }
    std::mutex mutex;
  };

  // The values of a column added with a maker are made on first use, under
  // the lock: makers_[c] is empty once column c holds its values.
  mutable std::vector<ExtraColumn> columns_;
  mutable std::vector<ColumnMaker> makers_;
  mutable Lock columnLock_;
};

}  // namespace quadrel_io

#endif  // QUADREL_IO_POINT_SET_H
