#include "alloc_count.h"

#include <cstdlib>
#include <new>

namespace {
thread_local std::size_t allocations = 0;

void *Allocate(std::size_t size) {
  ++allocations;
  if (void *p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}

void *AllocateAligned(std::size_t size, std::align_val_t alignment) {
  ++allocations;
  const std::size_t align = static_cast<std::size_t>(alignment);
  // aligned_alloc wants a size that is a multiple of the alignment.
  const std::size_t rounded = (size + align - 1) / align * align;
  if (void *p = std::aligned_alloc(align, rounded == 0 ? align : rounded)) return p;
  throw std::bad_alloc();
}
}  // namespace

std::size_t BenchAllocationCount() {
  return allocations;
}

void *operator new(std::size_t size) {
  return Allocate(size);
}
void *operator new[](std::size_t size) {
  return Allocate(size);
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
  ++allocations;
  return std::malloc(size == 0 ? 1 : size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
  ++allocations;
  return std::malloc(size == 0 ? 1 : size);
}
void *operator new(std::size_t size, std::align_val_t alignment) {
  return AllocateAligned(size, alignment);
}
void *operator new[](std::size_t size, std::align_val_t alignment) {
  return AllocateAligned(size, alignment);
}
void operator delete(void *p) noexcept {
  std::free(p);
}
void operator delete[](void *p) noexcept {
  std::free(p);
}
void operator delete(void *p, std::size_t) noexcept {
  std::free(p);
}
void operator delete[](void *p, std::size_t) noexcept {
  std::free(p);
}
void operator delete(void *p, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete[](void *p, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete(void *p, std::size_t, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete[](void *p, std::size_t, std::align_val_t) noexcept {
  std::free(p);
}
