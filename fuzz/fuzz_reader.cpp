// The point reader of quadrel-fit on raw bytes: every input either gives a
// table of finite points or stops with an input error; nothing else happens.
#include <cmath>
#include <string>
#include <string_view>

#include "errors.h"
#include "point_reader.h"
#include "quadrel/quadrel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char *>(data), size);
  for (const auto meaning : {quadrel_fit::kPointColumns, quadrel_fit::kSampleColumns}) {
    try {
      const quadrel_fit::PointTable table = quadrel_fit::ParsePointText(text, "fuzz", meaning);
      for (int k = 0; k < table.count(); ++k)
        for (int r = 0; r < 3; ++r)
          if (!std::isfinite(table.at(r, k)) || table.lineOf(k) < 1) __builtin_trap();
      const CMatrix points = table.Points();
      if (points.GetCols() != table.count()) __builtin_trap();
    } catch (const quadrel_fit::InputError &) {
    }
  }
  return 0;
}
