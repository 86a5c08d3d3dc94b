// Hints that ask for memory before a long pass needs it.
#ifndef QUADREL_MATRIX_INTERNAL_PREFETCH_H
#define QUADREL_MATRIX_INTERNAL_PREFETCH_H

#include <cstddef>
#include <cstdint>

// How far ahead of its position, in elements, a pass over long arrays asks for
// them. The passes of the fits and of their solver do little work per element,
// and once a system outgrows the inner caches the hardware alone does not fetch
// their streams early enough.
constexpr std::size_t kAhead = 256;

// Asks for the cache line at p. A hint only: it never faults.
inline void Fetch(const void *p) {
#if defined(__GNUC__)
  __builtin_prefetch(p);
#else
  (void)p;
#endif
}

// Asks for the cache line kAhead + extra elements past p, also past the end of
// an array (the address is formed as an integer, and the hint never faults).
template <class T>
inline void Ahead(const T *p, std::size_t extra = 0) {
  Fetch(reinterpret_cast<const void *>(reinterpret_cast<std::uintptr_t>(p) +
                                       (kAhead + extra) * sizeof(T)));
}

// For a loop over the points (columns) 0..n - 1 of a point set with column
// table table, at point i, that also walks the arrays streams in step (one
// double per point): asks for the arrays and the point kAhead places on, and
// for the table twice as far ahead, so that its entry is there to be read.
template <int kCount>
inline void AheadPoints(const double *const *table, int i, int n,
                        const double *const (&streams)[kCount]) {
  Ahead(table + i, kAhead);
  for (int t = 0; t < kCount; ++t)
    Ahead(streams[t] + i);
  if (n - i > static_cast<int>(kAhead)) Fetch(table[i + kAhead]);
}

#endif  // QUADREL_MATRIX_INTERNAL_PREFETCH_H
