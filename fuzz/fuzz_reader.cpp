// The point readers on raw bytes: every input either gives a set of finite
// points, each with the line it came from, or stops with a read error; nothing
// else happens.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "quadrel/io/point_set.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/read_points.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string_view content(reinterpret_cast<const char *>(data), size);
  for (const auto &options : {quadrel_io::kPointColumns, quadrel_io::kSampleColumns}) {
    try {
      const quadrel_io::PointSet set = quadrel_io::ParsePoints(content, "fuzz", options);
      std::int64_t previous = 0;
      for (int k = 0; k < set.count(); ++k) {
        for (int r = 0; r < 3; ++r)
          if (!std::isfinite(set.at(r, k))) __builtin_trap();
        if (set.originOf(k) <= previous) __builtin_trap();
        previous = set.originOf(k);
      }
    } catch (const quadrel_io::ReadError &error) {
      if (error.file() != "fuzz") __builtin_trap();
    }
  }
  return 0;
}
