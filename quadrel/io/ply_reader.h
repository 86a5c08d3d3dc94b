// PLY point files (ascii, binary_little_endian, binary_big_endian).
//
// The header is read once into a typed layout of its elements and their
// properties; the vertex element, wherever it stands, gives the points and
// every other element is skipped by its declared sizes, list properties
// included. x, y and z may have any PLY type; every other scalar property of
// a vertex becomes a column of its name. Vertices whose x, y or z is not
// finite are left out and counted.
#ifndef QUADREL_IO_PLY_READER_H
#define QUADREL_IO_PLY_READER_H

#include <memory>
#include <string>
#include <string_view>

#include "quadrel/io/point_set.h"

namespace quadrel_io {

// Parses the content of a PLY file; name is the source as messages show it.
// A fault of the header names its line; a fault of an ASCII body names its
// line, of a binary body its byte offset. Throws ReadError.
// When owner keeps the bytes of content alive, the set keeps them for the
// columns read later instead of a copy of them.
PointSet ParsePly(std::string_view content, const std::string &name,
                  const std::shared_ptr<const void> &owner = nullptr);

}  // namespace quadrel_io

#endif  // QUADREL_IO_PLY_READER_H
