// LAS point files, versions 1.0 to 1.4, uncompressed, point data formats 0
// to 10.
//
// Coordinates are the stored integers times the header's scale plus its
// offset, in that order. Every point keeps as columns: intensity,
// return_number, number_of_returns, classification, user_data,
// point_source_id, and where its format has them gps_time, red, green, blue
// and nir.
#ifndef QUADREL_IO_LAS_READER_H
#define QUADREL_IO_LAS_READER_H

#include <memory>
#include <string>
#include <string_view>

#include "quadrel/io/point_set.h"

namespace quadrel_io {

// Parses the content of a LAS file; name is the source as messages show it.
// A fault names its byte offset. Throws ReadError.
// When owner keeps the bytes of content alive, the set keeps them for the
// columns read later instead of a copy of them.
PointSet ParseLas(std::string_view content, const std::string &name,
                  const std::shared_ptr<const void> &owner = nullptr);

// The message for a LAZ (compressed LAS) file, which is not read here: what
// it is and how to decompress it.
std::string LazMessage(const std::string &name);

}  // namespace quadrel_io

#endif  // QUADREL_IO_LAS_READER_H
