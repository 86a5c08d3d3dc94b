// Shared pieces of the benchmarks: test data and the timing loops.
//
// The data are points on known shapes with a little noise, drawn from fixed
// seeds so that every run times the same numbers. They are made once per size,
// outside any timed loop, and kept for the life of the program.
#ifndef QUADREL_BENCH_BENCH_UTIL_H
#define QUADREL_BENCH_BENCH_UTIL_H

#include <benchmark/benchmark.h>

#include <Eigen/Core>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <quadrel/quadrel.h>

#include "quadrel/testing/alloc_counter.h"

// A rows x cols block of numbers in row order: element (i, j) at i * cols + j.
struct Block {
  int rows = 0;
  int cols = 0;
  std::vector<double> values;
};

// Point sets, 3 x n, one point per column.
// On the plane through (0.5, -1.2, 2) with normal (1, 2, 2) / 3, spread over
// 10 x 10, noise 0.01 along the normal.
Block PlanePoints(int n);
// On the line through (1, 2, -1) along (2, 3, 6) / 7, spread over 20, noise 0.01.
Block LinePoints(int n);
// On the sphere of centre (1, -2, 0.5) and radius 3, radial noise 0.01.
Block SpherePoints(int n);
// On the circle of centre (1, 2, 3), radius 2.5, normal (1, 1, 2) / sqrt(6),
// noise 0.01 in radius and height.
Block CirclePoints(int n);
// On z = ((x - 0.3) / 1.7)^2 + ((y + 0.2) / 0.9)^2 + 0.8 over [-2, 2]^2,
// vertical noise 0.01.
Block ParaboloidPoints(int n);
// Face 0, 1 or 2 of the cube corner with apex (1, 2, 3): the planes x = 1,
// y = 2 and z = 3, in that order; noise 0.001 along the normal.
Block TrihedralFace(int face, int n);
// n samples of a concave quadratic quality over [-3, 3]^2 whose maximum is at
// (0.4, -0.7), noise 0.1: quality n x 1, positions 2 x n.
void QualitySamples(int n, Block &quality, Block &positions);
// Uniform numbers in [-1, 1].
Block RandomBlock(int rows, int cols, unsigned seed);

CMatrix ToQuadrel(const Block &block);
Eigen::MatrixXd ToEigen(const Block &block);

// The value that make() gives for key, made on first use and kept. One cache
// per type of make, so each benchmark keeps its own data.
template <class T, class Make>
const T &Cached(std::int64_t key, Make make) {
  static std::map<std::int64_t, std::unique_ptr<T>> cache;
  auto found = cache.find(key);
  if (found == cache.end()) found = cache.emplace(key, std::make_unique<T>(make())).first;
  return *found->second;
}

// Times call. One call before the loop brings the outputs to their final
// shape, so that the loop sees what a caller fitting scan after scan sees.
// Sets itemsPerCall items per call, and with countAllocations the heap
// allocations per call as "allocs". Only quadrel's are counted: Eigen
// allocates through malloc, which the counter does not see.
template <class Call>
void TimeCalls(benchmark::State &state, std::int64_t itemsPerCall, bool countAllocations,
               Call &&call) {
  call();
  const std::size_t before = AllocationCount();
  for (auto _ : state) {
    call();
    benchmark::ClobberMemory();
  }
  const std::size_t after = AllocationCount();
  if (countAllocations) {
    state.counters["allocs"] =
        static_cast<double>(after - before) / static_cast<double>(state.iterations());
  }
  state.SetItemsProcessed(state.iterations() * itemsPerCall);
}

template <class Call>
void TimeQuadrel(benchmark::State &state, std::int64_t itemsPerCall, Call &&call) {
  TimeCalls(state, itemsPerCall, true, call);
}

template <class Call>
void TimeEigen(benchmark::State &state, std::int64_t itemsPerCall, Call &&call) {
  TimeCalls(state, itemsPerCall, false, call);
}

// Registers the two sides of one case under names that line up,
// <name>/quadrel/<n> and <name>/eigen/<n>, one run per size.
void RegisterPair(const std::string &name, void (*quadrel)(benchmark::State &),
                  void (*eigen)(benchmark::State &), std::initializer_list<std::int64_t> sizes,
                  benchmark::TimeUnit unit);
// A case without a reference: <name>/quadrel/<n>.
void RegisterAlone(const std::string &name, void (*quadrel)(benchmark::State &),
                   std::initializer_list<std::int64_t> sizes, benchmark::TimeUnit unit);

#endif  // QUADREL_BENCH_BENCH_UTIL_H
