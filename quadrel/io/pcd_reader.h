// PCD point files, versions 0.5 to 0.7: DATA ascii, binary and
// binary_compressed (LZF, the fields stored one after another).
//
// Fields x, y and z may have any size and type; every other field of COUNT 1
// becomes a column of its name, fields with a larger COUNT and padding ("_")
// are skipped. A cloud of HEIGHT above 1 is organized: its points keep their
// row and column. Points whose x, y or z is not finite (pixels without a
// return) are left out and counted.
#ifndef QUADREL_IO_PCD_READER_H
#define QUADREL_IO_PCD_READER_H

#include <memory>
#include <string>
#include <string_view>

#include "quadrel/io/point_set.h"

namespace quadrel_io {

// Parses the content of a PCD file; name is the source as messages show it.
// A fault of the header or of an ASCII body names its line, of a binary body
// its byte offset. Throws ReadError.
// When owner keeps the bytes of content alive, the set keeps them for the
// columns read later instead of a copy of them.
PointSet ParsePcd(std::string_view content, const std::string &name,
                  const std::shared_ptr<const void> &owner = nullptr);

}  // namespace quadrel_io

#endif  // QUADREL_IO_PCD_READER_H
