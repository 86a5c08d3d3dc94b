// A hash of the exact bits of results, for tests that compare runs.
#ifndef QUADREL_TESTS_BIT_HASH_H
#define QUADREL_TESTS_BIT_HASH_H

#include <cstddef>
#include <cstdint>

#include <quadrel/quadrel.h>

// FNV-1a over the shape and the bits of every element, row by row.
class BitHash {
 public:
  void Add(const CMatrix &m) {
    const int shape[2] = {m.GetRows(), m.GetCols()};
    Mix(shape, sizeof shape);
    for (int i = 0; i < m.GetRows(); ++i)
      for (int j = 0; j < m.GetCols(); ++j)
        Mix(&m(i, j), sizeof(double));
  }
  void Add(double x) { Mix(&x, sizeof x); }
  void Add(int x) { Mix(&x, sizeof x); }
  std::uint64_t Value() const { return hash_; }

 private:
  void Mix(const void *data, std::size_t size) {
    const unsigned char *bytes = static_cast<const unsigned char *>(data);
    for (std::size_t k = 0; k < size; ++k) {
      hash_ ^= bytes[k];
      hash_ *= 1099511628211ULL;
    }
  }
  std::uint64_t hash_ = 14695981039346656037ULL;
};

#endif  // QUADREL_TESTS_BIT_HASH_H
