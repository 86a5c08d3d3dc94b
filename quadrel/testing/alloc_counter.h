// Counting of heap allocations in tests.
//
// The test programs replace the global operator new with one that counts the
// calls made on the current thread. AllocationCount gives the count so far;
// tests take the difference around the code they measure.
#ifndef QUADREL_TESTING_ALLOC_COUNTER_H
#define QUADREL_TESTING_ALLOC_COUNTER_H

#include <cstddef>

// Number of calls of any global operator new on this thread so far.
std::size_t AllocationCount();

// Counts the allocations made while it lives.
class AllocationScope {
 public:
  AllocationScope() : start_(AllocationCount()) {}
  std::size_t Count() const { return AllocationCount() - start_; }

 private:
  std::size_t start_;
};

#endif  // QUADREL_TESTING_ALLOC_COUNTER_H
