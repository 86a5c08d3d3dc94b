// The point readers on raw bytes, with the format told from the content as
// the tool and the Python package tell it, in both column meanings: every
// input either gives what CheckReader demands or stops with a read error;
// nothing else happens.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_reader_check.h"
#include "quadrel/io/read_points.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  for (const auto &options : {quadrel_io::kPointColumns, quadrel_io::kSampleColumns}) {
    CheckReader(data, size, [&options](std::string_view content) {
      return quadrel_io::ParsePoints(content, "fuzz", options);
    });
  }
  return 0;
}
