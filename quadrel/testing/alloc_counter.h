// Counting of heap allocations in tests and benchmarks, and injected
// allocation failures.
//
// A program that links this replaces the global operator new with one that
// counts the calls made on the current thread, including those made inside
// libquadrel.so, which resolves operator new to the program's definition. AllocationCount gives the count so far;
// tests take the difference around the code they measure. LiveBlocks counts
// the blocks handed out and not yet given back on this thread, so that a test
// can see whether a call, also one that ended in an exception, freed all it
// took.
//
// AllocationFailureAfter(k) arms a single failure on this thread: the next k
// calls of operator new succeed and the one after throws std::bad_alloc (the
// nothrow forms return null instead). The failure fires once and disarms
// itself; AllocationFailureOff disarms it before that.
#ifndef QUADREL_TESTING_ALLOC_COUNTER_H
#define QUADREL_TESTING_ALLOC_COUNTER_H

#include <cstddef>

// Number of calls of any global operator new on this thread so far.
std::size_t AllocationCount();

// Blocks allocated on this thread minus blocks freed on it (null pointers do
// not count). Only differences mean something.
long long LiveBlocks();

// Makes the (k + 1)-th operator new from now on, on this thread, fail.
void AllocationFailureAfter(std::size_t k);
// Cancels an armed failure that has not fired yet.
void AllocationFailureOff();
// True once an armed failure has fired; rearming resets it.
bool AllocationFailureFired();

// Counts the allocations made while it lives.
class AllocationScope {
 public:
  AllocationScope() : start_(AllocationCount()) {}
  std::size_t Count() const { return AllocationCount() - start_; }

 private:
  std::size_t start_;
};

#endif  // QUADREL_TESTING_ALLOC_COUNTER_H
