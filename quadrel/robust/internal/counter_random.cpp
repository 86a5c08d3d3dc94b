// Counter-based draws: see counter_random.h.
#include "quadrel/robust/internal/counter_random.h"

std::uint64_t MixBits(std::uint64_t z) {
  z += 0x9e3779b97f4a7c15ULL;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
  return z ^ (z >> 31);
}

CounterRandom::CounterRandom(std::uint64_t seed, std::uint64_t stream)
    : m_key(MixBits(MixBits(seed) ^ stream)) {}

std::uint64_t CounterRandom::Next() {
  return MixBits(m_key ^ MixBits(m_counter++));
}

std::uint64_t CounterRandom::Below(std::uint64_t bound) {
  // 2^64 mod bound, computed in 64 bits: the values below it are rejected so
  // that every remainder is equally likely.
  const std::uint64_t reject = (0 - bound) % bound;
  for (;;) {
    const std::uint64_t r = Next();
    if (r >= reject) return r % bound;
  }
}

void CounterRandom::Distinct(std::int64_t bound, int count, std::int64_t *out) {
  int made = 0;
  for (std::int64_t j = bound - count; j < bound; ++j) {
    const std::int64_t t = static_cast<std::int64_t>(Below(static_cast<std::uint64_t>(j) + 1));
    bool taken = false;
    for (int k = 0; k < made; ++k)
      taken = taken || out[k] == t;
    out[made++] = taken ? j : t;
  }
}
