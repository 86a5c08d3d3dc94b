// What every point reader promises, checked on each result of a harness: a
// set of finite points in the order of their origins, columns of one number
// per point, a grid that holds every pixel; or a read error that names the
// source. Anything else traps.
#ifndef QUADREL_FUZZ_READER_CHECK_H
#define QUADREL_FUZZ_READER_CHECK_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "quadrel/io/point_set.h"
#include "quadrel/io/read_error.h"

template <typename Parse>
void CheckReader(const std::uint8_t *data, std::size_t size, Parse parse) {
  const std::string_view content(reinterpret_cast<const char *>(data), size);
  try {
    const quadrel_io::PointSet set = parse(content);
    std::int64_t previous = 0;
    for (int k = 0; k < set.count(); ++k) {
      for (int r = 0; r < 3; ++r)
        if (!std::isfinite(set.at(r, k))) __builtin_trap();
      if (set.originOf(k) <= previous) __builtin_trap();
      previous = set.originOf(k);
      if (set.organized() && set.rowOf(k) >= set.height()) __builtin_trap();
    }
    for (const quadrel_io::ExtraColumn &column : set.columns())
      if (column.values.size() != static_cast<std::size_t>(set.count())) __builtin_trap();
  } catch (const quadrel_io::ReadError &error) {
    if (error.file() != "fuzz") __builtin_trap();
  }
}

#endif  // QUADREL_FUZZ_READER_CHECK_H
