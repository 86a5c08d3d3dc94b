// A hash of the exact bits of results, for tests that compare runs or compare
// with results stored earlier.
#ifndef QUADREL_TESTING_BIT_HASH_H
#define QUADREL_TESTING_BIT_HASH_H

#include <cstdint>
#include <cstring>

#include "quadrel/matrix/matrix.h"

// 64-bit FNV-1a. Every value is fed lowest byte first, so a hash does not
// depend on the byte order of the machine.
class BitHash {
 public:
  // The shape, then the bits of every element, row by row.
  void Add(const CMatrix &m) {
    Add(m.GetRows());
    Add(m.GetCols());
    for (int i = 0; i < m.GetRows(); ++i)
      for (int j = 0; j < m.GetCols(); ++j)
        Add(m(i, j));
  }
  void Add(const double *values, int count) {
    for (int k = 0; k < count; ++k)
      Add(values[k]);
  }
  void Add(double x) {
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    Mix(bits, 8);
  }
  void Add(int x) { Mix(static_cast<std::uint32_t>(x), 4); }
  std::uint64_t Value() const { return hash_; }

 private:
  void Mix(std::uint64_t bits, int bytes) {
    for (int k = 0; k < bytes; ++k) {
      hash_ ^= (bits >> (8 * k)) & 0xffu;
      hash_ *= 1099511628211ULL;
    }
  }
  std::uint64_t hash_ = 14695981039346656037ULL;
};

#endif  // QUADREL_TESTING_BIT_HASH_H
