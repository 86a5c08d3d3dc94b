// The records of a point cloud as its reader collects them, before the
// records without a return are left out.
#ifndef QUADREL_IO_RAW_CLOUD_H
#define QUADREL_IO_RAW_CLOUD_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "quadrel/io/large_buffer.h"
#include "quadrel/io/point_set.h"
#include "quadrel/io/scalar_column.h"

namespace quadrel_io {

// A further column of a binary file, kept as the bytes of its field until its
// values are asked for: the field of record k lies at offset + k * stride in
// the cloud's kept bytes. A bit field keeps (value >> shift) & mask when mask
// is not 0.
struct StoredField {
  std::size_t offset = 0, stride = 0;
  ScalarType type = ScalarType::kUint8;
  bool bigEndian = false;
  unsigned shift = 0, mask = 0;
};

// A field of a record of fixed size: its name, byte and type, and for a bit
// field the shift and mask applied to its value.
struct RecordField {
  std::string name;
  std::size_t offset = 0;
  ScalarType type = ScalarType::kUint8;
  unsigned shift = 0, mask = 0;
};

// A further column of the cloud: its values, or where they are stored.
struct RawColumn {
  std::string name;
  std::vector<double> values;
  bool stored = false;
  StoredField field;
};

// x, y and z and the further columns of every record, all of one length, in
// the order of the file; width and height are set for an organized cloud.
// The coordinates lie in one block, axis by axis, the layout of PointSet, so
// that they are never copied.
struct RawCloud {
  std::vector<double> xyz;
  std::size_t records = 0;
  std::vector<RawColumn> extras;
  // The bytes the stored columns are read from.
  std::shared_ptr<const char> kept;
  // Takes room for the coordinates of count records.
  void Allocate(std::size_t count) {
    records = count;
    ReserveLarge(xyz, 3 * count);
    xyz.resize(3 * count);
  }
  // Axis r (0 for x, 1 for y, 2 for z) of every record.
  double *axis(int r) { return xyz.data() + static_cast<std::size_t>(r) * records; }
  // Adds a further column of one value per record, all 0 until the reader
  // fills them, and gives its values.
  double *AddColumn(std::string name);
  // Adds a further column read from the kept bytes when asked for.
  void AddStoredColumn(std::string name, const StoredField &field) {
    extras.push_back({std::move(name), {}, true, field});
  }
  // Keeps the bytes of the fields of every record, records `stride` bytes
  // apart from `at`, and adds a stored column for each field, in their
  // order: the records themselves when owner keeps them alive, else a copy
  // of the bytes of the fields. Records must be set; the kept bytes unset.
  void StoreFields(const char *at, std::size_t stride, const std::vector<RecordField> &fields,
                   bool bigEndian, const std::shared_ptr<const void> &owner);
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
