#include "quadrel/io/read_points.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include "quadrel/io/las_reader.h"
#include "quadrel/io/pcd_reader.h"
#include "quadrel/io/ply_reader.h"
#include "quadrel/io/point_format.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/shown_bytes.h"
#include "quadrel/io/text_reader.h"

namespace quadrel_io {

PointSet ParsePoints(std::string_view content, const std::string &name,
                     const ReadOptions &options) {
  switch (DetectFormat(content)) {
    case PointFormat::kPly:
      return ParsePly(content, name);
    case PointFormat::kPcd:
      return ParsePcd(content, name);
    case PointFormat::kLas:
      return ParseLas(content, name);
    case PointFormat::kLaz:
      throw ReadError(name, 0, LazMessage(name));
    case PointFormat::kUnknown:
      throw ReadError(name, 0,
                      name +
                          ": the format is not recognized: the content is binary (it starts "
                          "with '" +
                          ShownBytes(content.substr(0, 16), 64) +
                          "') but is not PLY, PCD or LAS; text files hold numbers as text");
    case PointFormat::kText:
      break;
  }
  PointSet set = ParsePointText(content, name, options);
  set.setFormat("text");
  return set;
}

PointSet ReadPoints(const std::string &path, const ReadOptions &options) {
  const bool standardInput = path == "-";
  const std::string name = standardInput ? "<stdin>" : path;
  std::error_code ignored;
  if (!standardInput && std::filesystem::is_directory(path, ignored)) {
    throw ReadError(name, 0, "cannot read " + name + ": it is a directory");
  }
  std::FILE *file = standardInput ? stdin : std::fopen(path.c_str(), "rb");
  if (file == nullptr)
    throw ReadError(name, 0, "cannot open " + name + ": " + std::strerror(errno));

  // One pass over the file in large blocks; the content is parsed afterwards.
  std::string content;
  std::vector<char> block(1 << 20);
  std::size_t got = 0;
  while ((got = std::fread(block.data(), 1, block.size(), file)) > 0)
    content.append(block.data(), got);
  const bool failed = std::ferror(file) != 0;
  const int error = errno;
  if (!standardInput) std::fclose(file);
  if (failed) throw ReadError(name, 0, "cannot read " + name + ": " + std::strerror(error));
  return ParsePoints(content, name, options);
}

}  // namespace quadrel_io
