// Telling the format of a point file from its first bytes.
#ifndef QUADREL_IO_POINT_FORMAT_H
#define QUADREL_IO_POINT_FORMAT_H

#include <string_view>

namespace quadrel_io {

enum class PointFormat {
  kText,     // numbers as text, one point per line
  kPly,      // "ply" on the first line
  kPcd,      // a PCD header: its first line that is no comment starts with a PCD keyword
  kLas,      // "LASF", uncompressed
  kLaz,      // "LASF" with the point format of a compressed file
  kUnknown,  // binary content that matches none of them
};

// The format of the content, from its first bytes alone (never from a file
// name). Content counts as binary, and so kUnknown unless a signature matched,
// when its first 4096 bytes hold a control character other than blanks and
// line ends.
PointFormat DetectFormat(std::string_view content);

}  // namespace quadrel_io

#endif  // QUADREL_IO_POINT_FORMAT_H
