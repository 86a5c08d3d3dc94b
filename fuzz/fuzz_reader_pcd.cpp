// The PCD (and the LZF decompressor under it) reader on raw bytes, without the format detection in
// front of it: every input gives a valid point set or a read error.
#include <cstddef>
#include <cstdint>

#include "fuzz_reader_check.h"
#include "quadrel/io/pcd_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  CheckReader(data, size,
              [](std::string_view content) { return quadrel_io::ParsePcd(content, "fuzz"); });
  return 0;
}
