#include "quadrel/io/ply_reader.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "quadrel/io/raw_cloud.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/scalar_column.h"
#include "quadrel/io/shown_bytes.h"
#include "quadrel/io/text_scan.h"

namespace quadrel_io {

namespace {

enum class Encoding { kAscii, kLittle, kBig };

struct Property {
  std::string name;
  ScalarType type = ScalarType::kFloat32;
  bool list = false;
  ScalarType countType = ScalarType::kUint8;  // a list's
  std::size_t offset = 0;                     // in a record of fixed size
};

struct Element {
  std::string name;
  std::int64_t count = 0;
  std::int64_t line = 0;  // of its header line
  std::vector<Property> properties;
  bool fixed = true;     // no list property: every record has `size` bytes
  std::size_t size = 0;  // bytes of a record when fixed
};

struct Layout {
  Encoding encoding = Encoding::kAscii;
  std::vector<Element> elements;
  std::size_t body = 0;    // byte where the data start
  std::int64_t lines = 0;  // header lines
};

// Both names of every PLY type.
bool ParseType(std::string_view word, ScalarType &type) {
  static const struct {
    const char *a, *b;
    ScalarType type;
  } kTypes[] = {
      {"char", "int8", ScalarType::kInt8},        {"uchar", "uint8", ScalarType::kUint8},
      {"short", "int16", ScalarType::kInt16},     {"ushort", "uint16", ScalarType::kUint16},
      {"int", "int32", ScalarType::kInt32},       {"uint", "uint32", ScalarType::kUint32},
      {"float", "float32", ScalarType::kFloat32}, {"double", "float64", ScalarType::kFloat64}};
  for (const auto &known : kTypes) {
    if (word == known.a || word == known.b) {
      type = known.type;
      return true;
    }
  }
  return false;
}

const char *const kTypeList =
    "char, uchar, short, ushort, int, uint, float, double, or int8, uint8, int16, uint16, int32, "
    "uint32, float32, float64";

Layout ParseHeader(std::string_view content, const std::string &name) {
  TextScan scan(content);
  std::string_view line;
  scan.NextLine(line);  // "ply", as detected
  Layout layout;
  bool haveFormat = false;
  auto fail = [&](const std::string &fault) { throw ReadError(name, scan.line(), fault); };
  while (true) {
    if (!scan.NextLine(line)) {
      throw ReadError(name, 0, name + ": the PLY header ends without an end_header line");
    }
    const std::vector<std::string_view> words = SplitWords(line);
    if (words.empty()) continue;
    const std::string_view keyword = words[0];
    if (keyword == "comment" || keyword == "obj_info") continue;
    if (keyword == "end_header") {
      if (words.size() != 1) fail("end_header takes no words after it");
      break;
    }
    if (keyword == "format") {
      if (haveFormat) fail("a second format line");
      if (words.size() != 3)
        fail("a format line is 'format ascii|binary_little_endian|binary_big_endian 1.0'");
      if (words[1] == "ascii") {
        layout.encoding = Encoding::kAscii;
      } else if (words[1] == "binary_little_endian") {
        layout.encoding = Encoding::kLittle;
      } else if (words[1] == "binary_big_endian") {
        layout.encoding = Encoding::kBig;
      } else {
        fail("'" + ShownBytes(words[1]) +
             "' is not a PLY format (ascii, binary_little_endian or binary_big_endian)");
      }
      if (words[2] != "1.0") fail("PLY version '" + ShownBytes(words[2]) + "' is not 1.0");
      haveFormat = true;
    } else if (keyword == "element") {
      if (!haveFormat) fail("an element before the format line");
      Element element;
      if (words.size() != 3 || !ParseCount(words[2], INT64_C(1) << 48, element.count)) {
        fail("an element line is 'element NAME COUNT' with a count of at least 0");
      }
      element.name = std::string(words[1]);
      element.line = scan.line();
      layout.elements.push_back(std::move(element));
    } else if (keyword == "property") {
      if (layout.elements.empty()) fail("a property before any element");
      Property property;
      const bool list = words.size() >= 2 && words[1] == "list";
      if (words.size() != (list ? 5u : 3u)) {
        fail("a property line is 'property TYPE NAME' or 'property list COUNTTYPE TYPE NAME'");
      }
      const std::string_view typeWord = words[list ? 3 : 1];
      if (list) {
        if (!ParseType(words[2], property.countType)) {
          fail("'" + ShownBytes(words[2]) + "' is not a PLY type (" + kTypeList + ")");
        }
        if (property.countType == ScalarType::kFloat32 ||
            property.countType == ScalarType::kFloat64) {
          fail("the count of a list must have an integer type, not '" + std::string(words[2]) +
               "'");
        }
      }
      if (!ParseType(typeWord, property.type)) {
        fail("'" + ShownBytes(typeWord) + "' is not a PLY type (" + kTypeList + ")");
      }
      property.list = list;
      property.name = std::string(words.back());
      Element &element = layout.elements.back();
      if (list) {
        element.fixed = false;
      } else {
        property.offset = element.size;
        element.size += ScalarSize(property.type);
      }
      element.properties.push_back(std::move(property));
    } else {
      fail("'" + ShownBytes(keyword) + "' is not a PLY header keyword");
    }
  }
  if (!haveFormat) throw ReadError(name, 0, name + ": the PLY header has no format line");
  layout.body = scan.position();
  layout.lines = scan.line();
  return layout;
}

// Where x, y and z are among the vertex properties; throws when one is
// missing or is a list.
void FindAxes(const Element &vertex, const std::string &name, int axes[3]) {
  const char *const names[3] = {"x", "y", "z"};
  for (int r = 0; r < 3; ++r) {
    axes[r] = -1;
    for (std::size_t p = 0; p < vertex.properties.size(); ++p) {
      if (vertex.properties[p].name == names[r]) {
        axes[r] = static_cast<int>(p);
        break;
      }
    }
    if (axes[r] < 0) {
      throw ReadError(name, vertex.line,
                      std::string("the vertex element has no property ") + names[r] +
                          " (x, y and z are needed)");
    }
    if (vertex.properties[static_cast<std::size_t>(axes[r])].list) {
      throw ReadError(name, vertex.line,
                      std::string("the vertex property ") + names[r] + " is a list, not a number");
    }
  }
}

// One column per scalar vertex property, count values each; x, y and z go
// to the axes of the cloud, the others to its extras. target[p] is where
// property p goes (nullptr for a list).
std::vector<double *> Targets(const Element &vertex, const int axes[3], RawCloud &cloud,
                              std::size_t count) {
  std::vector<double *> target(vertex.properties.size(), nullptr);
  cloud.Allocate(count);
  for (int r = 0; r < 3; ++r)
    target[static_cast<std::size_t>(axes[r])] = cloud.axis(r);
  cloud.extras.reserve(vertex.properties.size());
  for (std::size_t p = 0; p < vertex.properties.size(); ++p) {
    if (vertex.properties[p].list || target[p] != nullptr) continue;
    target[p] = cloud.AddColumn(vertex.properties[p].name);
  }
  return target;
}

std::string Where(const Element &element, std::int64_t record) {
  return element.name + " " + std::to_string(record + 1) + " of " + std::to_string(element.count);
}

void ReadAscii(std::string_view content, const std::string &name, const Layout &layout,
               std::size_t vertexIndex, const int axes[3], RawCloud &cloud) {
  TextScan scan(content, layout.body);
  // The scan counts lines from the end of the header.
  const std::int64_t lineBase = layout.lines;
  // A value takes a character and a separator at least, so no more vertices
  // than this fit in the file: memory is taken for those alone, and a file
  // that declares more ends before they are filled.
  const Element &vertex = layout.elements[vertexIndex];
  const std::size_t fit =
      std::min(static_cast<std::size_t>(vertex.count),
               (content.size() - layout.body + 1) / (2 * vertex.properties.size()));
  std::string_view word;
  auto next = [&](const Element &element, std::int64_t record) {
    if (!scan.NextWord(word)) {
      throw ReadError(name, lineBase + scan.line(),
                      "the file ends inside " + Where(element, record));
    }
  };
  auto number = [&](double &value) {
    if (!ParseNumber(word, value)) {
      throw ReadError(name, lineBase + scan.line(), "'" + ShownBytes(word) + "' is not a number");
    }
  };
  for (std::size_t e = 0; e <= vertexIndex; ++e) {
    const Element &element = layout.elements[e];
    if (element.properties.empty()) continue;
    std::vector<double *> target;
    if (e == vertexIndex) target = Targets(element, axes, cloud, fit);
    for (std::int64_t record = 0; record < element.count; ++record) {
      for (std::size_t p = 0; p < element.properties.size(); ++p) {
        next(element, record);
        double value = 0.0;
        number(value);
        if (!element.properties[p].list) {
          // A record beyond `fit` cannot be whole: the file ends inside it.
          if (!target.empty() && static_cast<std::size_t>(record) < fit) target[p][record] = value;
          continue;
        }
        if (!(value >= 0.0 && value <= static_cast<double>(content.size()) &&
              value == static_cast<double>(static_cast<std::int64_t>(value)))) {
          throw ReadError(name, lineBase + scan.line(),
                          "'" + ShownBytes(word) + "' is not a list length");
        }
        for (auto item = static_cast<std::int64_t>(value); item > 0; --item) {
          next(element, record);
          number(value);
        }
      }
    }
  }
}

// The bytes of one list property at `at`: its count and its items. Returns
// false when they run past the end.
bool ListSize(std::string_view content, std::size_t at, const Property &property, bool big,
              std::size_t &size) {
  const std::size_t countSize = ScalarSize(property.countType);
  if (content.size() - at < countSize) return false;
  double count = 0.0;
  ReadColumn(content.data(), 0, at, 1, property.countType, big, &count);
  if (count < 0.0) return false;
  const std::size_t itemSize = ScalarSize(property.type);
  const double room = static_cast<double>(content.size() - at - countSize) / itemSize;
  if (count > room) return false;
  size = countSize + static_cast<std::size_t>(count) * itemSize;
  return true;
}

void ReadBinary(std::string_view content, const std::string &name, const Layout &layout,
                std::size_t vertexIndex, const int axes[3], RawCloud &cloud,
                const std::shared_ptr<const void> &owner) {
  const bool big = layout.encoding == Encoding::kBig;
  std::size_t at = layout.body;
  auto ends = [&](const Element &element, std::int64_t record, std::size_t where) {
    const std::string size =
        element.fixed ? " (each " + std::to_string(element.size) + " bytes)" : "";
    throw ReadError(name, static_cast<std::int64_t>(where),
                    "the file ends inside " + Where(element, record) + size, PositionKind::kByte);
  };
  for (std::size_t e = 0; e <= vertexIndex; ++e) {
    const Element &element = layout.elements[e];
    const auto count = static_cast<std::size_t>(element.count);
    if (element.fixed) {
      // One check for the whole element, then one tight loop per column.
      const std::size_t room = content.size() - at;
      if (element.size > 0 && room / element.size < count) {
        ends(element, static_cast<std::int64_t>(room / element.size),
             at + room / element.size * element.size);
      }
      if (e == vertexIndex) {
        // x, y and z now, the other properties when asked for.
        cloud.Allocate(count);
        std::vector<RecordField> others;
        for (std::size_t p = 0; p < element.properties.size(); ++p) {
          const Property &property = element.properties[p];
          const auto r = static_cast<int>(std::find(axes, axes + 3, static_cast<int>(p)) - axes);
          if (r < 3) {
            ReadColumn(content.data() + at, element.size, property.offset, count, property.type,
                       big, cloud.axis(r));
          } else {
            others.push_back({property.name, property.offset, property.type});
          }
        }
        cloud.StoreFields(content.data() + at, element.size, others, big, owner);
      }
      at += element.size * count;
      continue;
    }
    std::vector<double *> target;
    if (e == vertexIndex) {
      // Every record takes the bytes of its scalars and list counts at least.
      std::size_t least = 0;
      for (const Property &property : element.properties)
        least += ScalarSize(property.list ? property.countType : property.type);
      if ((content.size() - at) / least < count) {
        throw ReadError(name, static_cast<std::int64_t>(at),
                        "the data are too short for the " + std::to_string(count) +
                            " vertices the header declares",
                        PositionKind::kByte);
      }
      target = Targets(element, axes, cloud, count);
    }
    for (std::size_t record = 0; record < count; ++record) {
      const std::size_t start = at;
      for (std::size_t p = 0; p < element.properties.size(); ++p) {
        const Property &property = element.properties[p];
        std::size_t size = 0;
        if (property.list) {
          if (!ListSize(content, at, property, big, size))
            ends(element, static_cast<std::int64_t>(record), start);
        } else {
          size = ScalarSize(property.type);
          if (content.size() - at < size) ends(element, static_cast<std::int64_t>(record), start);
          if (!target.empty())
            ReadColumn(content.data(), 0, at, 1, property.type, big, target[p] + record);
        }
        at += size;
      }
    }
  }
}

}  // namespace

PointSet ParsePly(std::string_view content, const std::string &name,
                  const std::shared_ptr<const void> &owner) {
  const Layout layout = ParseHeader(content, name);
  std::size_t vertexIndex = layout.elements.size();
  for (std::size_t e = 0; e < layout.elements.size(); ++e) {
    if (layout.elements[e].name == "vertex") {
      vertexIndex = e;
      break;
    }
  }
  if (vertexIndex == layout.elements.size()) {
    throw ReadError(name, 0, name + ": the PLY header declares no vertex element");
  }
  int axes[3];
  FindAxes(layout.elements[vertexIndex], name, axes);
  RawCloud cloud;
  if (layout.encoding == Encoding::kAscii) {
    ReadAscii(content, name, layout, vertexIndex, axes, cloud);
  } else {
    ReadBinary(content, name, layout, vertexIndex, axes, cloud, owner);
  }
  return FinishCloud(std::move(cloud), name, "ply");
}

}  // namespace quadrel_io
