// Numbers stored in binary records: the scalar types of the point formats and
// the loop that widens one field of every record to double.
#ifndef QUADREL_IO_SCALAR_COLUMN_H
#define QUADREL_IO_SCALAR_COLUMN_H

#include <cstddef>

namespace quadrel_io {

enum class ScalarType {
  kInt8,
  kUint8,
  kInt16,
  kUint16,
  kInt32,
  kUint32,
  kInt64,
  kUint64,
  kFloat32,
  kFloat64
};

// Bytes of one value of the type.
std::size_t ScalarSize(ScalarType type);

// Reads the field at byte `offset` of `count` records, `stride` bytes apart,
// from `records`, into out[0..count-1]. Every value widens to double exactly,
// except 64-bit integers beyond 2^53, which round to the nearest double. The
// caller keeps offset + (count - 1) * stride + ScalarSize(type) within the
// bytes of records.
void ReadColumn(const char *records, std::size_t stride, std::size_t offset, std::size_t count,
                ScalarType type, bool bigEndian, double *out);

}  // namespace quadrel_io

#endif  // QUADREL_IO_SCALAR_COLUMN_H
