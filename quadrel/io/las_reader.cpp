#include "quadrel/io/las_reader.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "quadrel/io/raw_cloud.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/scalar_column.h"

namespace quadrel_io {

namespace {

template <typename T>
T Load(std::string_view content, std::size_t at) {
  T value;
  std::memcpy(&value, content.data() + at, sizeof value);
  return value;
}

// x, y and z of every record: the stored little-endian int32 at bytes 0, 4
// and 8, times the axis's scale, plus its offset.
void ScaleAxes(const char *at, std::size_t stride, std::size_t count, const double scale[3],
               const double offset[3], double *x, double *y, double *z) {
  double *const out[3] = {x, y, z};
  for (std::size_t k = 0; k < count; ++k, at += stride) {
    for (std::size_t r = 0; r < 3; ++r) {
      std::uint32_t bits;
      std::memcpy(&bits, at + 4 * r, sizeof bits);
      if constexpr (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__) bits = __builtin_bswap32(bits);
      std::int32_t stored;
      std::memcpy(&stored, &bits, sizeof stored);
      out[r][k] = static_cast<double>(stored) * scale[r] + offset[r];
    }
  }
}

// The layout of the record of each point data format: its least length and
// its columns after X, Y, Z (bytes 0, 4, 8 in every format).
struct LasFormat {
  std::size_t length;
  std::vector<RecordField> fields;
};

LasFormat FormatOf(int format) {
  std::vector<RecordField> fields = {{"intensity", 12, ScalarType::kUint16}};
  std::size_t length = 0;
  if (format <= 5) {
    fields.push_back({"return_number", 14, ScalarType::kUint8, 0, 7});
    fields.push_back({"number_of_returns", 14, ScalarType::kUint8, 3, 7});
    fields.push_back({"classification", 15, ScalarType::kUint8, 0, 31});
    fields.push_back({"user_data", 17, ScalarType::kUint8});
    fields.push_back({"point_source_id", 18, ScalarType::kUint16});
    const bool time = format == 1 || format == 3 || format == 4 || format == 5;
    const bool colour = format == 2 || format == 3 || format == 5;
    length = 20;
    if (time) {
      fields.push_back({"gps_time", 20, ScalarType::kFloat64});
      length = 28;
    }
    if (colour) {
      fields.push_back({"red", length, ScalarType::kUint16});
      fields.push_back({"green", length + 2, ScalarType::kUint16});
      fields.push_back({"blue", length + 4, ScalarType::kUint16});
      length += 6;
    }
    if (format == 4 || format == 5) length += 29;  // wave packet descriptor
  } else {
    fields.push_back({"return_number", 14, ScalarType::kUint8, 0, 15});
    fields.push_back({"number_of_returns", 14, ScalarType::kUint8, 4, 15});
    fields.push_back({"classification", 16, ScalarType::kUint8});
    fields.push_back({"user_data", 17, ScalarType::kUint8});
    fields.push_back({"point_source_id", 20, ScalarType::kUint16});
    fields.push_back({"gps_time", 22, ScalarType::kFloat64});
    length = 30;
    if (format == 7 || format == 8 || format == 10) {
      fields.push_back({"red", 30, ScalarType::kUint16});
      fields.push_back({"green", 32, ScalarType::kUint16});
      fields.push_back({"blue", 34, ScalarType::kUint16});
      length = 36;
    }
    if (format == 8 || format == 10) {
      fields.push_back({"nir", 36, ScalarType::kUint16});
      length = 38;
    }
    if (format == 9 || format == 10) length += 29;
  }
  return {length, std::move(fields)};
}

}  // namespace

std::string LazMessage(const std::string &name) {
  return name +
         " is a LAZ file (compressed LAS), which is not read here; decompress it to LAS first, "
         "e.g. with 'laszip -i in.laz -o out.las' (LAStools or LASzip) or 'pdal translate in.laz "
         "out.las' (PDAL)";
}

PointSet ParseLas(std::string_view content, const std::string &name,
                  const std::shared_ptr<const void> &owner) {
  auto fail = [&](std::size_t at, const std::string &fault) {
    throw ReadError(name, static_cast<std::int64_t>(at), fault, PositionKind::kByte);
  };
  if (content.size() < 227) {
    fail(content.size(), "the file ends inside the LAS header (" + std::to_string(content.size()) +
                             " of at least 227 bytes)");
  }
  const int major = static_cast<unsigned char>(content[24]);
  const int minor = static_cast<unsigned char>(content[25]);
  if (major != 1 || minor > 4) {
    fail(24, "LAS version " + std::to_string(major) + "." + std::to_string(minor) +
                 " is not one of 1.0 to 1.4");
  }
  const std::size_t headerSize = Load<std::uint16_t>(content, 94);
  const std::size_t least = minor >= 4 ? 375 : minor == 3 ? 235 : 227;
  if (headerSize < least) {
    fail(94, "the header size " + std::to_string(headerSize) + " is below the " +
                 std::to_string(least) + " bytes of a LAS 1." + std::to_string(minor) + " header");
  }
  if (content.size() < headerSize) {
    fail(content.size(), "the file ends inside the LAS header (" + std::to_string(content.size()) +
                             " of " + std::to_string(headerSize) + " bytes)");
  }
  const std::size_t pointData = Load<std::uint32_t>(content, 96);
  const int format = static_cast<unsigned char>(content[104]);
  const std::size_t recordLength = Load<std::uint16_t>(content, 105);
  std::uint64_t count = Load<std::uint32_t>(content, 107);
  if (minor >= 4 && count == 0) count = Load<std::uint64_t>(content, 247);
  double scale[3], offset[3];
  for (int r = 0; r < 3; ++r) {
    scale[r] = Load<double>(content, 131 + 8 * static_cast<std::size_t>(r));
    offset[r] = Load<double>(content, 155 + 8 * static_cast<std::size_t>(r));
    if (!std::isfinite(scale[r]) || scale[r] == 0.0 || !std::isfinite(offset[r])) {
      fail(131 + 8 * static_cast<std::size_t>(r),
           std::string("the ") + "xyz"[r] + " scale and offset must be finite, the scale not 0");
    }
  }
  if (format > 10)
    fail(104, "point data format " + std::to_string(format) + " is not one of 0 to 10");
  const LasFormat layout = FormatOf(format);
  if (recordLength < layout.length) {
    fail(105, "a point record of format " + std::to_string(format) + " takes at least " +
                  std::to_string(layout.length) + " bytes, not " + std::to_string(recordLength));
  }
  if (pointData < headerSize || pointData > content.size()) {
    fail(96, "the point data are said to start at byte " + std::to_string(pointData) +
                 ", outside the file's " + std::to_string(content.size()) +
                 " bytes after its header");
  }
  const std::size_t room = (content.size() - pointData) / recordLength;
  if (room < count) {
    fail(pointData + room * recordLength, "the file ends inside point " + std::to_string(room + 1) +
                                              " of " + std::to_string(count) + " (each " +
                                              std::to_string(recordLength) + " bytes)");
  }
  const auto n = static_cast<std::size_t>(count);
  const char *records = content.data() + pointData;
  RawCloud cloud;
  cloud.Allocate(n);
  ScaleAxes(records, recordLength, n, scale, offset, cloud.axis(0), cloud.axis(1), cloud.axis(2));
  // The further fields are kept as bytes and read only when asked for.
  cloud.StoreFields(records, recordLength, layout.fields, false, owner);
  return FinishCloud(std::move(cloud), name, "las");
}

}  // namespace quadrel_io
