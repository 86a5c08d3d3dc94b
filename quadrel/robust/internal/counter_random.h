// A counter-based random generator for sample consensus.
//
// Every number is a pure function of (seed, stream, counter): the SplitMix64
// finaliser applied to the three in turn. There is no hidden state beyond the
// counter, and only 64-bit integer operations are used, so the same seed gives
// the same numbers on every platform, 32-bit ones included.
#ifndef QUADREL_ROBUST_INTERNAL_COUNTER_RANDOM_H
#define QUADREL_ROBUST_INTERNAL_COUNTER_RANDOM_H

#include <cstdint>

// The SplitMix64 finaliser: a bijection of 64-bit words that mixes every input
// bit into every output bit.
std::uint64_t MixBits(std::uint64_t z);

// A stream of numbers, (seed, stream) fixed, the counter rising by one per draw.
class CounterRandom {
 public:
  CounterRandom(std::uint64_t seed, std::uint64_t stream);

  // The next 64-bit number: MixBits(key ^ counter) for a key that mixes seed
  // and stream.
  std::uint64_t Next();
  // A number uniform in 0 .. bound - 1, bound >= 1, by rejection of the top
  // 2^64 mod bound values (no bias), each rejection costing one more draw.
  std::uint64_t Below(std::uint64_t bound);
  // Fills out[0 .. count - 1] with count distinct numbers of 0 .. bound - 1
  // (count <= bound, count <= 8) by Floyd's method: exactly count calls of
  // Below, whatever numbers come up.
  void Distinct(std::int64_t bound, int count, std::int64_t *out);

 private:
  std::uint64_t m_key;
  std::uint64_t m_counter = 0;
};

#endif  // QUADREL_ROBUST_INTERNAL_COUNTER_RANDOM_H
