// Counting of heap allocations in the benchmark program.
//
// The program replaces the global operator new with one that counts the calls
// made on the current thread, including those made inside libquadrel.so, which
// resolves operator new to this program's definition. Eigen allocates through
// malloc and is not counted.
#ifndef QUADREL_BENCH_ALLOC_COUNT_H
#define QUADREL_BENCH_ALLOC_COUNT_H

#include <cstddef>

// Number of calls of any global operator new on this thread so far.
std::size_t BenchAllocationCount();

#endif  // QUADREL_BENCH_ALLOC_COUNT_H
