#include "quadrel/io/point_format.h"

#include <algorithm>
#include <cstddef>

namespace quadrel_io {

namespace {

// The keywords a PCD header line may start with; a file starts with one of
// them after its comment lines.
bool StartsWithPcdKeyword(std::string_view line) {
  for (std::string_view keyword : {"VERSION", "FIELDS", "SIZE", "TYPE", "COUNT", "WIDTH", "HEIGHT",
                                   "VIEWPOINT", "POINTS", "DATA"}) {
    if (line.substr(0, keyword.size()) == keyword &&
        (line.size() == keyword.size() || line[keyword.size()] == ' ' ||
         line[keyword.size()] == '\t' || line[keyword.size()] == '\r'))
      return true;
  }
  return false;
}

}  // namespace

PointFormat DetectFormat(std::string_view content) {
  if (content.substr(0, 4) == "ply\n" || content.substr(0, 5) == "ply\r\n")
    return PointFormat::kPly;
  if (content.substr(0, 4) == "LASF") {
    // LAZ writers keep the LAS header and set bit 7 (or, in some, bit 6) of
    // the point data format, at byte 104.
    if (content.size() > 104 && (static_cast<unsigned char>(content[104]) & 0xC0) != 0)
      return PointFormat::kLaz;
    return PointFormat::kLas;
  }
  // PCD: comment lines, then a header keyword (VERSION in files written since
  // 0.6, FIELDS in some older ones).
  std::size_t start = 0;
  while (start < content.size()) {
    std::size_t stop = content.find('\n', start);
    if (stop == std::string_view::npos) stop = content.size();
    const std::string_view line = content.substr(start, stop - start);
    if (!line.empty() && line[0] == '#') {
      start = stop + 1;
      continue;
    }
    if (StartsWithPcdKeyword(line)) return PointFormat::kPcd;
    break;
  }
  const std::string_view head = content.substr(0, 4096);
  const bool binary = std::any_of(head.begin(), head.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r' && byte != '\v' &&
            byte != '\f') ||
           byte == 0x7f;
  });
  return binary ? PointFormat::kUnknown : PointFormat::kText;
}

}  // namespace quadrel_io
