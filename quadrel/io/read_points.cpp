#include "quadrel/io/read_points.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "quadrel/io/large_buffer.h"
#include "quadrel/io/las_reader.h"
#include "quadrel/io/pcd_reader.h"
#include "quadrel/io/ply_reader.h"
#include "quadrel/io/point_format.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/shown_bytes.h"
#include "quadrel/io/text_reader.h"

namespace quadrel_io {

PointSet ParsePoints(std::string_view content, const std::string &name, const ReadOptions &options,
                     const std::shared_ptr<const void> &owner) {
  switch (DetectFormat(content)) {
    case PointFormat::kPly:
      return ParsePly(content, name, owner);
    case PointFormat::kPcd:
      return ParsePcd(content, name, owner);
    case PointFormat::kLas:
      return ParseLas(content, name, owner);
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

  // The whole content in one buffer, read straight into it: a regular file
  // in one call into room of its size, standard input and pipes into room
  // that doubles as they go. The content is parsed afterwards.
  std::error_code sizeError;
  const std::uintmax_t fileSize = standardInput ? 0 : std::filesystem::file_size(path, sizeError);
  std::size_t room =
      sizeError || fileSize == 0 ? std::size_t{1} << 20 : static_cast<std::size_t>(fileSize) + 1;
  std::unique_ptr<char[]> content;
  std::size_t used = 0;
  while (true) {
    if (content == nullptr || used == room) {
      if (content != nullptr) room *= 2;
      std::unique_ptr<char[]> larger(new char[room]);
      AdviseHugePages(larger.get(), room);
      if (used > 0) std::memcpy(larger.get(), content.get(), used);
      content = std::move(larger);
    }
    const std::size_t got = std::fread(content.get() + used, 1, room - used, file);
    if (got == 0) break;
    used += got;
  }
  const bool failed = std::ferror(file) != 0;
  const int error = errno;
  if (!standardInput) std::fclose(file);
  if (failed) throw ReadError(name, 0, "cannot read " + name + ": " + std::strerror(error));
  // The set may keep the bytes of further columns, read when asked for.
  const std::shared_ptr<const char[]> owner(std::move(content));
  return ParsePoints(std::string_view(owner.get(), used), name, options, owner);
}

}  // namespace quadrel_io
