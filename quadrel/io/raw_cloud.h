// The records of a point cloud as its reader collects them, before the
// records without a return are left out.
#ifndef QUADREL_IO_RAW_CLOUD_H
#define QUADREL_IO_RAW_CLOUD_H

#include <cstdint>
#include <string>
#include <vector>

#include "quadrel/io/point_set.h"

namespace quadrel_io {

// x, y and z and the further columns of every record, all of one length, in
// the order of the file; width and height are set for an organized cloud.
// The coordinates lie in one block, axis by axis, the layout of PointSet, so
// that they are never copied.
struct RawCloud {
  std::vector<double> xyz;
  std::size_t records = 0;
  std::vector<ExtraColumn> extras;
  // Takes room for the coordinates of count records.
  void Allocate(std::size_t count) {
    records = count;
    xyz.resize(3 * count);
  }
  // Axis r (0 for x, 1 for y, 2 for z) of every record.
  double *axis(int r) { return xyz.data() + static_cast<std::size_t>(r) * records; }
  std::int64_t width = 0;
  std::int64_t height = 0;
};

// The point set of the records whose x, y and z are all finite, each with its
// record (from 1) as origin, and the count of the others as skipped(). Throws
// ReadError when records exist but none is finite, or when more points remain
// than one matrix holds. A later column of a name already taken is dropped.
PointSet FinishCloud(RawCloud cloud, const std::string &name, const std::string &format);

}  // namespace quadrel_io

#endif  // QUADREL_IO_RAW_CLOUD_H
