#include "quadrel/io/samples/sample_files.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace quadrel_io_samples {

namespace {

void AppendBytes(std::string &out, const void *bytes, std::size_t size, bool big) {
  const auto *b = static_cast<const char *>(bytes);
  if (!big) {
    out.append(b, size);
  } else {
    for (std::size_t k = size; k > 0; --k)
      out += b[k - 1];
  }
}

// One value stored as its type, in little-endian order unless big.
void AppendValue(std::string &out, double value, ScalarType type, bool big = false) {
  switch (type) {
    case ScalarType::kInt8: {
      const auto v = static_cast<std::int8_t>(value);
      return AppendBytes(out, &v, 1, big);
    }
    case ScalarType::kUint8: {
      const auto v = static_cast<std::uint8_t>(value);
      return AppendBytes(out, &v, 1, big);
    }
    case ScalarType::kInt16: {
      const auto v = static_cast<std::int16_t>(value);
      return AppendBytes(out, &v, 2, big);
    }
    case ScalarType::kUint16: {
      const auto v = static_cast<std::uint16_t>(value);
      return AppendBytes(out, &v, 2, big);
    }
    case ScalarType::kInt32: {
      const auto v = static_cast<std::int32_t>(value);
      return AppendBytes(out, &v, 4, big);
    }
    case ScalarType::kUint32: {
      const auto v = static_cast<std::uint32_t>(value);
      return AppendBytes(out, &v, 4, big);
    }
    case ScalarType::kInt64: {
      const auto v = static_cast<std::int64_t>(value);
      return AppendBytes(out, &v, 8, big);
    }
    case ScalarType::kUint64: {
      const auto v = static_cast<std::uint64_t>(value);
      return AppendBytes(out, &v, 8, big);
    }
    case ScalarType::kFloat32: {
      const auto v = static_cast<float>(value);
      return AppendBytes(out, &v, 4, big);
    }
    case ScalarType::kFloat64:
      return AppendBytes(out, &value, 8, big);
  }
}

std::string Text(double value) {
  if (std::isnan(value)) return "nan";
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

// Both PLY names of each type; the writer uses them in turn.
const char *PlyName(ScalarType type, int turn) {
  static const char *const kNames[][2] = {
      {"char", "int8"},     {"uchar", "uint8"},   {"short", "int16"}, {"ushort", "uint16"},
      {"int", "int32"},     {"uint", "uint32"},   {"int", "int32"},   {"uint", "uint32"},
      {"float", "float32"}, {"double", "float64"}};
  return kNames[static_cast<int>(type)][turn % 2];
}

char PcdType(ScalarType type) {
  switch (type) {
    case ScalarType::kFloat32:
    case ScalarType::kFloat64:
      return 'F';
    case ScalarType::kInt8:
    case ScalarType::kInt16:
    case ScalarType::kInt32:
    case ScalarType::kInt64:
      return 'I';
    default:
      return 'U';
  }
}

}  // namespace

std::string WritePly(const SampleCloud &cloud, PlyEncoding encoding, ScalarType coordType,
                     bool withFaceFirst) {
  const bool ascii = encoding == PlyEncoding::kAscii;
  const bool big = encoding == PlyEncoding::kBig;
  std::string out = "ply\nformat ";
  out += ascii ? "ascii" : big ? "binary_big_endian" : "binary_little_endian";
  out += " 1.0\ncomment written for the readers' tests\nobj_info scanner 0\n";
  if (withFaceFirst) out += "element face 2\nproperty list uchar int vertex_indices\n";
  out += "element vertex " + std::to_string(cloud.size()) + "\n";
  int turn = 0;
  for (const char *axis : {"x", "y", "z"})
    out += std::string("property ") + PlyName(coordType, turn++) + " " + axis + "\n";
  for (const SampleColumn &column : cloud.columns)
    out += std::string("property ") + PlyName(column.type, turn++) + " " + column.name + "\n";
  out += "element edge 1\nproperty int vertex1\nproperty int vertex2\nend_header\n";
  if (withFaceFirst) {
    for (int face = 0; face < 2; ++face) {
      if (ascii) {
        out += "3 0 1 " + std::to_string(2 + face) + "\n";
      } else {
        AppendValue(out, 3, ScalarType::kUint8, big);
        for (int v : {0, 1, 2 + face})
          AppendValue(out, v, ScalarType::kInt32, big);
      }
    }
  }
  for (std::size_t k = 0; k < cloud.size(); ++k) {
    const double axes[3] = {cloud.x[k], cloud.y[k], cloud.z[k]};
    for (double value : axes) {
      if (ascii) {
        out += Text(coordType == ScalarType::kFloat32 ? static_cast<float>(value) : value) + " ";
      } else {
        AppendValue(out, value, coordType, big);
      }
    }
    for (const SampleColumn &column : cloud.columns) {
      if (ascii) {
        out += Text(column.values[k]) + " ";
      } else {
        AppendValue(out, column.values[k], column.type, big);
      }
    }
    if (ascii) out.back() = '\n';
  }
  if (ascii) {
    out += "0 1\n";
  } else {
    AppendValue(out, 0, ScalarType::kInt32, big);
    AppendValue(out, 1, ScalarType::kInt32, big);
  }
  return out;
}

std::string WritePcd(const SampleCloud &cloud, PcdData data, ScalarType coordType) {
  struct Field {
    std::string name;
    ScalarType type;
    const std::vector<double> *values;
  };
  std::vector<Field> fields = {
      {"x", coordType, &cloud.x}, {"y", coordType, &cloud.y}, {"z", coordType, &cloud.z}};
  for (const SampleColumn &column : cloud.columns)
    fields.push_back({column.name, column.type, &column.values});
  std::string names, sizes, types, counts;
  for (const Field &field : fields) {
    names += " " + field.name;
    sizes += " " + std::to_string(quadrel_io::ScalarSize(field.type));
    types += std::string(" ") + PcdType(field.type);
    counts += " 1";
  }
  const std::size_t n = cloud.size();
  const bool organized = cloud.height > 1;
  std::string out = "# .PCD v0.7 - Point Cloud Data file format\nVERSION 0.7\nFIELDS" + names +
                    " _\nSIZE" + sizes + " 1\nTYPE" + types + " U\nCOUNT" + counts + " 3\nWIDTH " +
                    std::to_string(organized ? cloud.width : n) + "\nHEIGHT " +
                    std::to_string(organized ? cloud.height : 1) +
                    "\nVIEWPOINT 0 0 0 1 0 0 0\nPOINTS " + std::to_string(n) + "\nDATA ";
  if (data == PcdData::kAscii) {
    out += "ascii\n";
    for (std::size_t k = 0; k < n; ++k) {
      for (const Field &field : fields) {
        const double v = (*field.values)[k];
        out += Text(field.type == ScalarType::kFloat32 ? static_cast<float>(v) : v) + " ";
      }
      out += "0 0 0\n";
    }
    return out;
  }
  std::string block;
  if (data == PcdData::kBinary) {
    for (std::size_t k = 0; k < n; ++k) {
      for (const Field &field : fields)
        AppendValue(block, (*field.values)[k], field.type);
      block.append(3, '\0');
    }
    return out + "binary\n" + block;
  }
  for (const Field &field : fields)
    for (std::size_t k = 0; k < n; ++k)
      AppendValue(block, (*field.values)[k], field.type);
  block.append(3 * n, '\0');
  const std::string packed = LzfCompress(block);
  out += "binary_compressed\n";
  AppendValue(out, static_cast<double>(packed.size()), ScalarType::kUint32);
  AppendValue(out, static_cast<double>(block.size()), ScalarType::kUint32);
  return out + packed;
}

std::string WriteLas(const SampleCloud &cloud, int format, int minor, const double scale[3],
                     const double offset[3]) {
  static const std::size_t kLength[] = {20, 28, 26, 34, 57, 63, 30, 36, 38, 59, 67};
  const std::size_t headerSize = minor >= 4 ? 375 : minor == 3 ? 235 : 227;
  const std::size_t n = cloud.size();
  std::string out(headerSize, '\0');
  std::memcpy(&out[0], "LASF", 4);
  out[24] = 1;
  out[25] = static_cast<char>(minor);
  auto put = [&out](std::size_t at, double value, ScalarType type) {
    std::string bytes;
    AppendValue(bytes, value, type);
    out.replace(at, bytes.size(), bytes);
  };
  put(94, static_cast<double>(headerSize), ScalarType::kUint16);
  put(96, static_cast<double>(headerSize), ScalarType::kUint32);
  out[104] = static_cast<char>(format);
  put(105, static_cast<double>(kLength[format]), ScalarType::kUint16);
  put(107, format >= 6 ? 0.0 : static_cast<double>(n), ScalarType::kUint32);
  if (minor >= 4) put(247, static_cast<double>(n), ScalarType::kUint64);
  for (int r = 0; r < 3; ++r) {
    put(131 + 8 * static_cast<std::size_t>(r), scale[r], ScalarType::kFloat64);
    put(155 + 8 * static_cast<std::size_t>(r), offset[r], ScalarType::kFloat64);
  }
  const bool modern = format >= 6;
  for (std::size_t k = 0; k < n; ++k) {
    std::string record(kLength[format], '\0');
    const double axes[3] = {cloud.x[k], cloud.y[k], cloud.z[k]};
    for (int r = 0; r < 3; ++r) {
      std::string bytes;
      AppendValue(bytes, std::nearbyint((axes[r] - offset[r]) / scale[r]), ScalarType::kInt32);
      record.replace(4 * static_cast<std::size_t>(r), 4, bytes);
    }
    record[14] = static_cast<char>(modern ? 0x11 : 0x09);  // return 1 of 1
    for (const SampleColumn &column : cloud.columns) {
      std::size_t at = 0;
      ScalarType type = ScalarType::kUint8;
      if (column.name == "classification") at = modern ? 16 : 15;
      if (column.name == "user_data") at = 17;
      if (column.name == "intensity") at = 12, type = ScalarType::kUint16;
      if (column.name == "point_source_id") at = modern ? 20 : 18, type = ScalarType::kUint16;
      if (at == 0) continue;
      std::string bytes;
      AppendValue(bytes, column.values[k], type);
      record.replace(at, bytes.size(), bytes);
    }
    out += record;
  }
  return out;
}

std::string LzfCompress(const std::string &input) {
  const auto *in = reinterpret_cast<const unsigned char *>(input.data());
  const std::size_t n = input.size();
  std::vector<std::size_t> table(1 << 14, SIZE_MAX);
  std::string out, literals;
  auto flush = [&] {
    if (literals.empty()) return;
    out += static_cast<char>(literals.size() - 1);
    out += literals;
    literals.clear();
  };
  std::size_t ip = 0;
  while (ip + 2 < n) {
    const unsigned hash = ((in[ip] << 16 | in[ip + 1] << 8 | in[ip + 2]) * 2654435761u) >> 18;
    const std::size_t ref = table[hash];
    table[hash] = ip;
    if (ref != SIZE_MAX && ip - ref - 1 < 8192 && std::memcmp(in + ref, in + ip, 3) == 0) {
      flush();
      std::size_t length = 3;
      const std::size_t most = std::min<std::size_t>(264, n - ip);
      while (length < most && in[ref + length] == in[ip + length])
        ++length;
      const std::size_t distance = ip - ref - 1;
      const std::size_t code = length - 2;
      if (code < 7) {
        out += static_cast<char>(code << 5 | distance >> 8);
      } else {
        out += static_cast<char>(7 << 5 | distance >> 8);
        out += static_cast<char>(code - 7);
      }
      out += static_cast<char>(distance & 255);
      ip += length;
      continue;
    }
    literals += static_cast<char>(in[ip++]);
    if (literals.size() == 32) flush();
  }
  while (ip < n) {
    literals += static_cast<char>(in[ip++]);
    if (literals.size() == 32) flush();
  }
  flush();
  return out;
}

}  // namespace quadrel_io_samples
