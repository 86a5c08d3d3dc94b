#include "quadrel/io/large_buffer.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace quadrel_io {

void AdviseHugePages(void *data, std::size_t bytes) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  // Below a few huge pages the small pages at either end would be most of it.
  constexpr std::uintptr_t kHuge = std::uintptr_t{1} << 21;
  if (bytes < 4 * kHuge) return;
  const auto start = reinterpret_cast<std::uintptr_t>(data);
  const std::uintptr_t first = (start + kHuge - 1) & ~(kHuge - 1);
  const std::uintptr_t last = (start + bytes) & ~(kHuge - 1);
  if (last > first) madvise(reinterpret_cast<void *>(first), last - first, MADV_HUGEPAGE);
#else
  (void)data;
  (void)bytes;
#endif
}

}  // namespace quadrel_io
