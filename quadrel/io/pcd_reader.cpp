#include "quadrel/io/pcd_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "quadrel/io/large_buffer.h"
#include "quadrel/io/lzf.h"
#include "quadrel/io/raw_cloud.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/scalar_column.h"
#include "quadrel/io/shown_bytes.h"
#include "quadrel/io/text_scan.h"

namespace quadrel_io {

namespace {

enum class Data { kAscii, kBinary, kCompressed };

struct Field {
  std::string name;
  std::size_t size = 4;
  char type = 'F';
  std::int64_t count = 1;
  ScalarType scalar = ScalarType::kFloat32;
  std::size_t offset = 0;  // in a binary record, and in the values of an ASCII line
};

struct Header {
  std::vector<Field> fields;
  std::int64_t width = -1, height = 1, points = -1;
  Data data = Data::kAscii;
  std::size_t body = 0;    // byte after the DATA line
  std::int64_t lines = 0;  // header lines
  std::size_t recordSize = 0;
  std::size_t valuesPerPoint = 0;
};

bool ScalarOf(char type, std::size_t size, ScalarType &scalar) {
  if (type == 'F') {
    if (size == 4) scalar = ScalarType::kFloat32;
    if (size == 8) scalar = ScalarType::kFloat64;
    return size == 4 || size == 8;
  }
  if (type != 'I' && type != 'U') return false;
  const bool isSigned = type == 'I';
  switch (size) {
    case 1:
      scalar = isSigned ? ScalarType::kInt8 : ScalarType::kUint8;
      return true;
    case 2:
      scalar = isSigned ? ScalarType::kInt16 : ScalarType::kUint16;
      return true;
    case 4:
      scalar = isSigned ? ScalarType::kInt32 : ScalarType::kUint32;
      return true;
    case 8:
      scalar = isSigned ? ScalarType::kInt64 : ScalarType::kUint64;
      return true;
  }
  return false;
}

Header ParseHeader(std::string_view content, const std::string &name) {
  TextScan scan(content);
  Header header;
  std::string_view line;
  std::vector<std::string_view> sizes, types, counts;
  std::int64_t sizeLine = 0, typeLine = 0, countLine = 0, pointsLine = 0;
  bool haveFields = false, haveData = false;
  auto fail = [&](const std::string &fault) { throw ReadError(name, scan.line(), fault); };
  const std::int64_t kLimit = INT64_C(1) << 40;
  while (!haveData) {
    if (!scan.NextLine(line)) {
      throw ReadError(name, 0, name + ": the PCD header ends without a DATA line");
    }
    const std::vector<std::string_view> words = SplitWords(line);
    if (words.empty() || words[0][0] == '#') continue;
    const std::string_view keyword = words[0];
    const std::vector<std::string_view> values(words.begin() + 1, words.end());
    auto one = [&](std::int64_t &value, std::int64_t least) {
      if (values.size() != 1 || !ParseCount(values[0], kLimit, value) || value < least) {
        fail(std::string(keyword) + " takes one whole number of at least " + std::to_string(least));
      }
    };
    if (keyword == "VERSION") {
      if (values.size() != 1) fail("VERSION takes one number");
      const std::string_view v = values[0];
      if (v != "0.5" && v != "0.6" && v != "0.7" && v != ".5" && v != ".6" && v != ".7")
        fail("PCD version '" + ShownBytes(v) + "' is not one of 0.5, 0.6 and 0.7");
    } else if (keyword == "FIELDS" || keyword == "COLUMNS") {
      if (values.empty()) fail("FIELDS names no field");
      header.fields.clear();
      for (std::string_view field : values)
        header.fields.push_back({std::string(field)});
      haveFields = true;
    } else if (keyword == "SIZE") {
      sizes = values;
      sizeLine = scan.line();
    } else if (keyword == "TYPE") {
      types = values;
      typeLine = scan.line();
    } else if (keyword == "COUNT") {
      counts = values;
      countLine = scan.line();
    } else if (keyword == "WIDTH") {
      one(header.width, 0);
    } else if (keyword == "HEIGHT") {
      one(header.height, 1);
    } else if (keyword == "POINTS") {
      one(header.points, 0);
      pointsLine = scan.line();
    } else if (keyword == "VIEWPOINT") {
      double ignored = 0.0;
      for (std::string_view v : values)
        if (!ParseNumber(v, ignored)) fail("'" + ShownBytes(v) + "' in VIEWPOINT is not a number");
    } else if (keyword == "DATA") {
      if (values.size() != 1) fail("DATA takes one word: ascii, binary or binary_compressed");
      if (values[0] == "ascii") {
        header.data = Data::kAscii;
      } else if (values[0] == "binary") {
        header.data = Data::kBinary;
      } else if (values[0] == "binary_compressed") {
        header.data = Data::kCompressed;
      } else {
        fail("'" + ShownBytes(values[0]) +
             "' is not a PCD data form (ascii, binary or binary_compressed)");
      }
      haveData = true;
    } else {
      fail("'" + ShownBytes(keyword) + "' is not a PCD header keyword");
    }
  }
  header.body = scan.position();
  header.lines = scan.line();
  const std::int64_t dataLine = scan.line();
  if (!haveFields) throw ReadError(name, dataLine, "the PCD header has no FIELDS line");
  const std::size_t n = header.fields.size();
  auto matching = [&](const std::vector<std::string_view> &list, std::int64_t at,
                      const char *what) {
    if (list.size() != n) {
      throw ReadError(name, at > 0 ? at : dataLine,
                      std::string(what) + " gives " + std::to_string(list.size()) + " values for " +
                          std::to_string(n) + " fields");
    }
  };
  matching(sizes, sizeLine, "SIZE");
  matching(types, typeLine, "TYPE");
  if (!counts.empty()) matching(counts, countLine, "COUNT");
  for (std::size_t f = 0; f < n; ++f) {
    Field &field = header.fields[f];
    std::int64_t size = 0;
    if (!ParseCount(sizes[f], 8, size) || types[f].size() != 1 ||
        !ScalarOf(types[f][0], static_cast<std::size_t>(size), field.scalar)) {
      throw ReadError(name, typeLine,
                      "field " + ShownBytes(field.name) + " has TYPE '" + ShownBytes(types[f]) +
                          "' and SIZE '" + ShownBytes(sizes[f]) +
                          "', which is no PCD type (F of 4 or 8 bytes, I or U of 1, 2, 4 or 8)");
    }
    field.size = static_cast<std::size_t>(size);
    field.type = types[f][0];
    if (!counts.empty() && (!ParseCount(counts[f], 1 << 20, field.count) || field.count < 1)) {
      throw ReadError(name, countLine,
                      "COUNT '" + ShownBytes(counts[f]) + "' of field " + ShownBytes(field.name) +
                          " is not a whole number of at least 1");
    }
    field.offset = header.recordSize;
    header.recordSize += field.size * static_cast<std::size_t>(field.count);
    header.valuesPerPoint += static_cast<std::size_t>(field.count);
  }
  if (header.width < 0) throw ReadError(name, dataLine, "the PCD header has no WIDTH line");
  if (header.points < 0) header.points = header.width * header.height;
  if (header.width * header.height != header.points) {
    throw ReadError(name, pointsLine,
                    "WIDTH " + std::to_string(header.width) + " times HEIGHT " +
                        std::to_string(header.height) + " is not POINTS " +
                        std::to_string(header.points));
  }
  return header;
}

// Where x, y and z are among the fields; throws when one is missing or holds
// more than one value.
void FindAxes(const Header &header, const std::string &name, std::size_t axes[3]) {
  const char *const names[3] = {"x", "y", "z"};
  for (int r = 0; r < 3; ++r) {
    axes[r] = header.fields.size();
    for (std::size_t f = 0; f < header.fields.size(); ++f) {
      if (header.fields[f].name == names[r]) {
        axes[r] = f;
        break;
      }
    }
    if (axes[r] == header.fields.size()) {
      throw ReadError(
          name, header.lines,
          std::string("the PCD header has no field ") + names[r] + " (x, y and z are needed)");
    }
    if (header.fields[axes[r]].count != 1) {
      throw ReadError(name, header.lines,
                      std::string("field ") + names[r] + " has COUNT " +
                          std::to_string(header.fields[axes[r]].count) + "; it must be 1");
    }
  }
}

// Whether field f is a column of its own: not x, y or z, nor padding, nor a
// field with COUNT above 1.
bool IsKeptField(const Header &header, const std::size_t axes[3], std::size_t f) {
  const Field &field = header.fields[f];
  return std::find(axes, axes + 3, f) == axes + 3 && field.count == 1 && field.name != "_";
}

// Where each field goes: an axis of the cloud, a new extra column, or nowhere
// (nullptr: padding and fields with COUNT above 1).
std::vector<double *> Targets(const Header &header, const std::size_t axes[3], RawCloud &cloud,
                              std::size_t count) {
  std::vector<double *> target(header.fields.size(), nullptr);
  cloud.Allocate(count);
  for (int r = 0; r < 3; ++r)
    target[axes[r]] = cloud.axis(r);
  cloud.extras.reserve(header.fields.size());
  for (std::size_t f = 0; f < header.fields.size(); ++f) {
    const Field &field = header.fields[f];
    if (IsKeptField(header, axes, f)) target[f] = cloud.AddColumn(field.name);
  }
  return target;
}

void ReadAscii(std::string_view content, const std::string &name, const Header &header,
               const std::size_t axes[3], RawCloud &cloud) {
  // A value takes a character and a separator at least, so no more points
  // than this fit in the file: memory is taken for those alone, and a file
  // that declares more ends before they are filled.
  const std::size_t fit = (content.size() - header.body + 1) / (2 * header.valuesPerPoint);
  const std::vector<double *> target =
      Targets(header, axes, cloud, std::min(fit, static_cast<std::size_t>(header.points)));
  TextScan scan(content, header.body);
  std::string_view line;
  std::int64_t point = 0;
  std::vector<std::size_t> firstValue(header.fields.size());
  std::size_t v = 0;
  for (std::size_t f = 0; f < header.fields.size(); ++f) {
    firstValue[f] = v;
    v += static_cast<std::size_t>(header.fields[f].count);
  }
  while (point < header.points) {
    if (!scan.NextLine(line)) {
      throw ReadError(name, header.lines + scan.line(),
                      "the file ends after " + std::to_string(point) + " of " +
                          std::to_string(header.points) + " points");
    }
    const std::vector<std::string_view> words = SplitWords(line);
    if (words.empty()) continue;
    const std::int64_t at = header.lines + scan.line();
    if (words.size() != header.valuesPerPoint) {
      throw ReadError(name, at,
                      "expected " + std::to_string(header.valuesPerPoint) + " values, found " +
                          std::to_string(words.size()));
    }
    for (std::size_t f = 0; f < header.fields.size(); ++f) {
      const std::string_view word = words[firstValue[f]];
      double value = 0.0;
      if (!ParseNumber(word, value)) {
        throw ReadError(name, at, "'" + ShownBytes(word) + "' is not a number");
      }
      if (target[f] != nullptr) target[f][point] = value;
    }
    ++point;
  }
}

void ReadBinary(std::string_view content, const std::string &name, const Header &header,
                const std::size_t axes[3], RawCloud &cloud,
                const std::shared_ptr<const void> &owner) {
  const auto count = static_cast<std::size_t>(header.points);
  const std::size_t room = content.size() - header.body;
  if (header.recordSize > 0 && room / header.recordSize < count) {
    const std::size_t whole = room / header.recordSize;
    throw ReadError(name, static_cast<std::int64_t>(header.body + whole * header.recordSize),
                    "the file ends inside point " + std::to_string(whole + 1) + " of " +
                        std::to_string(count) + " (each " + std::to_string(header.recordSize) +
                        " bytes)",
                    PositionKind::kByte);
  }
  // x, y and z now, the other fields when asked for.
  cloud.Allocate(count);
  const char *records = content.data() + header.body;
  for (int r = 0; r < 3; ++r) {
    const Field &field = header.fields[axes[r]];
    ReadColumn(records, header.recordSize, field.offset, count, field.scalar, false, cloud.axis(r));
  }
  std::vector<RecordField> others;
  for (std::size_t f = 0; f < header.fields.size(); ++f) {
    const Field &field = header.fields[f];
    if (IsKeptField(header, axes, f)) others.push_back({field.name, field.offset, field.scalar});
  }
  cloud.StoreFields(records, header.recordSize, others, false, owner);
}

void ReadCompressed(std::string_view content, const std::string &name, const Header &header,
                    const std::size_t axes[3], RawCloud &cloud) {
  const std::size_t at = header.body;
  auto fail = [&](std::size_t where, const std::string &fault) {
    throw ReadError(name, static_cast<std::int64_t>(where), fault, PositionKind::kByte);
  };
  if (content.size() - at < 8) fail(at, "the file ends inside the sizes of the compressed block");
  std::uint32_t sizes[2];
  std::memcpy(sizes, content.data() + at, 8);
  const std::size_t compressed = sizes[0], expanded = sizes[1];
  const auto count = static_cast<std::size_t>(header.points);
  if (expanded / header.recordSize != count || expanded % header.recordSize != 0) {
    fail(at + 4, "the compressed block expands to " + std::to_string(expanded) + " bytes, but " +
                     std::to_string(count) + " points of " + std::to_string(header.recordSize) +
                     " bytes take " + std::to_string(count * header.recordSize));
  }
  if (content.size() - at - 8 < compressed) {
    fail(at, "the compressed block of " + std::to_string(compressed) +
                 " bytes runs past the end "
                 "of the file, which holds " +
                 std::to_string(content.size() - at - 8) + " bytes after its sizes");
  }
  // A back reference of three bytes writes at most 264, so no valid block
  // expands beyond 88 times its size.
  if (expanded / 88 > compressed) {
    fail(at, "the compressed block of " + std::to_string(compressed) +
                 " bytes cannot expand to the " + std::to_string(expanded) + " it declares");
  }
  auto values = std::make_shared<std::vector<char>>();
  ReserveLarge(*values, expanded);
  values->resize(expanded);
  if (expanded > 0) {
    const long long got =
        LzfDecompress(reinterpret_cast<const unsigned char *>(content.data() + at + 8), compressed,
                      reinterpret_cast<unsigned char *>(values->data()), expanded);
    if (got != static_cast<long long>(expanded)) {
      fail(at + 8, got < 0 ? "the compressed block is not valid LZF data"
                           : "the compressed block expands to " + std::to_string(got) +
                                 " bytes, not the " + std::to_string(expanded) + " it declares");
    }
  }
  // The fields one after another: all values of the first field, then all of
  // the second, and so on. x, y and z are read now; the expanded block is
  // kept for the other fields, read when asked for.
  cloud.Allocate(count);
  std::size_t start = 0;
  for (std::size_t f = 0; f < header.fields.size(); ++f) {
    const Field &field = header.fields[f];
    const std::size_t stride = field.size * static_cast<std::size_t>(field.count);
    const int r = static_cast<int>(std::find(axes, axes + 3, f) - axes);
    if (r < 3) {
      ReadColumn(values->data() + start, stride, 0, count, field.scalar, false, cloud.axis(r));
    } else if (IsKeptField(header, axes, f)) {
      cloud.AddStoredColumn(field.name, {start, stride, field.scalar});
      cloud.kept = std::shared_ptr<const char>(values, values->data());
    }
    start += stride * count;
  }
}

}  // namespace

PointSet ParsePcd(std::string_view content, const std::string &name,
                  const std::shared_ptr<const void> &owner) {
  const Header header = ParseHeader(content, name);
  std::size_t axes[3];
  FindAxes(header, name, axes);
  RawCloud cloud;
  switch (header.data) {
    case Data::kAscii:
      ReadAscii(content, name, header, axes, cloud);
      break;
    case Data::kBinary:
      ReadBinary(content, name, header, axes, cloud, owner);
      break;
    case Data::kCompressed:
      ReadCompressed(content, name, header, axes, cloud);
      break;
  }
  if (header.height > 1) {
    cloud.width = header.width;
    cloud.height = header.height;
  }
  return FinishCloud(std::move(cloud), name, "pcd");
}

}  // namespace quadrel_io
