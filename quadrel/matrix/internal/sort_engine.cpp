// An in-place quicksort over a key array and a companion array.
#include "quadrel/matrix/internal/sort_engine.h"

namespace {

// Ranges of at most this many elements are finished by selection sort.
constexpr std::size_t kCutOff = 8;

// Room for pending ranges. The larger part of each split waits and the smaller
// goes on, so every wait halves the range in work: a count below 2^31 never
// needs more than 28 entries.
constexpr int kStackSize = 30;

struct PendingRange {
  char *keysLow;
  char *keysHigh;
  char *companionLow;
  char *companionHigh;
};

}  // namespace

void SwapItems(char *a, char *b, std::size_t width) {
  if (a == b) return;
  for (std::size_t n = 0; n < width; ++n) {
    const char t = a[n];
    a[n] = b[n];
    b[n] = t;
  }
}

int CompareDouble(const void *a, const void *b) {
  const double x = *static_cast<const double *>(a);
  const double y = *static_cast<const double *>(b);
  if (x < y) return -1;
  if (x > y) return 1;
  if (x == y) return 0;
  // At least one NaN. NaN goes last, and two NaN keys are equal.
  const bool xNaN = x != x;
  const bool yNaN = y != y;
  if (xNaN && yNaN) return 0;
  return xNaN ? 1 : -1;
}

void ShortSortWithIndex(char *keysLow, char *keysHigh, char *companionLow, char *companionHigh,
                        std::size_t width, SortCompare compare) {
  while (keysHigh > keysLow) {
    // Strictly greater only: among equal largest keys the first one stays best.
    char *best = keysLow;
    for (char *p = keysLow + width; p <= keysHigh; p += width)
      if (compare(p, best) > 0) best = p;
    SwapItems(best, keysHigh, width);
    SwapItems(companionLow + (best - keysLow), companionHigh, width);
    keysHigh -= width;
    companionHigh -= width;
  }
}

void SortWithIndex(void *keys, void *companion, std::size_t count, std::size_t width,
                   SortCompare compare) {
  if (count < 2 || width == 0) return;

  PendingRange stack[kStackSize];
  int pending = 0;

  // Both ends inclusive; the companion's ends always stand at the same
  // positions as the keys' ends.
  char *lo = static_cast<char *>(keys);
  char *hi = lo + (count - 1) * width;
  char *companionLo = static_cast<char *>(companion);
  char *companionHi = companionLo + (count - 1) * width;

  for (;;) {
    const std::size_t size = static_cast<std::size_t>(hi - lo) / width + 1;
    if (size <= kCutOff) {
      ShortSortWithIndex(lo, hi, companionLo, companionHi, width, compare);
    } else {
      // The middle element is the pivot, parked at lo while the range is split.
      const std::size_t half = (size / 2) * width;
      SwapItems(lo + half, lo, width);
      SwapItems(companionLo + half, companionLo, width);

      char *up = lo;
      char *down = hi + width;
      for (;;) {
        // Both scans pass over keys equal to the pivot, so a range of equal keys
        // ends in a single split with two empty parts.
        do {
          up += width;
        } while (up <= hi && compare(up, lo) <= 0);
        do {
          down -= width;
        } while (down > lo && compare(down, lo) >= 0);
        if (down < up) break;
        SwapItems(up, down, width);
        SwapItems(companionLo + (up - lo), companionLo + (down - lo), width);
      }
      SwapItems(lo, down, width);
      SwapItems(companionLo, companionLo + (down - lo), width);

      // The pivot is final at down. Left part lo .. down - 1, right part
      // up .. hi; the larger part waits, the smaller one goes on at once.
      const std::size_t leftSize = static_cast<std::size_t>(down - lo) / width;
      const std::size_t rightSize = static_cast<std::size_t>(hi + width - up) / width;
      char *companionDown = companionLo + (down - lo);
      char *companionUp = companionLo + (up - lo);
      if (leftSize >= rightSize) {
        if (leftSize >= 2)
          stack[pending++] = PendingRange{lo, down - width, companionLo, companionDown - width};
        if (rightSize >= 2) {
          lo = up;
          companionLo = companionUp;
          continue;
        }
      } else {
        if (rightSize >= 2) stack[pending++] = PendingRange{up, hi, companionUp, companionHi};
        if (leftSize >= 2) {
          hi = down - width;
          companionHi = companionDown - width;
          continue;
        }
      }
    }

    if (pending == 0) return;
    --pending;
    lo = stack[pending].keysLow;
    hi = stack[pending].keysHigh;
    companionLo = stack[pending].companionLow;
    companionHi = stack[pending].companionHigh;
  }
}
