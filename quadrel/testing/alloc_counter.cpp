#include "quadrel/testing/alloc_counter.h"

#include <cstdlib>
#include <new>

namespace {
thread_local std::size_t allocations = 0;

void *Allocate(std::size_t size) {
  ++allocations;
  if (size == 0) size = 1;
  if (void *p = std::malloc(size)) return p;
  throw std::bad_alloc();
}
}  // namespace

std::size_t AllocationCount() { return allocations; }

void *operator new(std::size_t size) { return Allocate(size); }
void *operator new[](std::size_t size) { return Allocate(size); }
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
  ++allocations;
  return std::malloc(size == 0 ? 1 : size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
  ++allocations;
  return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void *p) noexcept { std::free(p); }
void operator delete[](void *p) noexcept { std::free(p); }
void operator delete(void *p, std::size_t) noexcept { std::free(p); }
void operator delete[](void *p, std::size_t) noexcept { std::free(p); }
