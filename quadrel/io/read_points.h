// The entry to every point reader: bytes or a file in, a PointSet out. The
// format is told from the content, never from the file name, so standard
// input serves as well as a file: PLY, PCD, LAS (uncompressed) or text.
#ifndef QUADREL_IO_READ_POINTS_H
#define QUADREL_IO_READ_POINTS_H

#include <memory>
#include <string>
#include <string_view>

#include "quadrel/io/point_set.h"
#include "quadrel/io/read_options.h"

namespace quadrel_io {

// Parses the whole content of a point file with the reader of its format;
// name is the source as messages show it. options apply to text. Throws
// ReadError on any fault, among them content that is binary but of no format
// read here, and LAZ, which it names with the way to decompress it. When
// owner keeps the bytes of content alive, the set of a binary file keeps
// them for the columns read later instead of a copy of them.
PointSet ParsePoints(std::string_view content, const std::string &name,
                     const ReadOptions &options = kPointColumns,
                     const std::shared_ptr<const void> &owner = nullptr);

// Reads and parses the file at path; "-" reads standard input, which messages
// call "<stdin>". Throws ReadError when the file cannot be opened or read
// ("cannot open points.txt: No such file or directory") or its content is bad.
PointSet ReadPoints(const std::string &path, const ReadOptions &options = kPointColumns);

}  // namespace quadrel_io

#endif  // QUADREL_IO_READ_POINTS_H
