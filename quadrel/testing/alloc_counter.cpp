#include "quadrel/testing/alloc_counter.h"

#include <cstdlib>
#include <new>

namespace {
thread_local std::size_t allocations = 0;
thread_local long long liveBlocks = 0;
thread_local bool failureArmed = false;
thread_local bool failureFired = false;
// Allocations still allowed before the armed failure; meaningful while armed.
thread_local std::size_t allowedBeforeFailure = 0;

// True if this allocation is the one that must fail (and disarms the failure).
bool FailHere() {
  if (!failureArmed) return false;
  if (allowedBeforeFailure > 0) {
    --allowedBeforeFailure;
    return false;
  }
  failureArmed = false;
  failureFired = true;
  return true;
}

void *TryAllocate(std::size_t size) {
  ++allocations;
  if (FailHere()) return nullptr;
  void *p = std::malloc(size == 0 ? 1 : size);
  if (p) ++liveBlocks;
  return p;
}

void *Allocate(std::size_t size) {
  if (void *p = TryAllocate(size)) return p;
  throw std::bad_alloc();
}

// Over-aligned blocks: the Windows C runtime has no aligned_alloc, and its
// aligned blocks go back through _aligned_free.
#if defined(_WIN32)
void *AlignedMalloc(std::size_t align, std::size_t size) {
  return _aligned_malloc(size, align);
}
void AlignedFree(void *p) {
  _aligned_free(p);
}
#else
void *AlignedMalloc(std::size_t align, std::size_t size) {
  return std::aligned_alloc(align, size);
}
void AlignedFree(void *p) {
  std::free(p);
}
#endif

void *AllocateAligned(std::size_t size, std::align_val_t alignment) {
  ++allocations;
  if (FailHere()) throw std::bad_alloc();
  const std::size_t align = static_cast<std::size_t>(alignment);
  // aligned_alloc wants a size that is a multiple of the alignment.
  const std::size_t rounded = (size + align - 1) / align * align;
  void *p = AlignedMalloc(align, rounded == 0 ? align : rounded);
  if (!p) throw std::bad_alloc();
  ++liveBlocks;
  return p;
}

void Free(void *p) {
  if (!p) return;
  --liveBlocks;
  std::free(p);
}

void FreeAligned(void *p) {
  if (!p) return;
  --liveBlocks;
  AlignedFree(p);
}
}  // namespace

std::size_t AllocationCount() {
  return allocations;
}
long long LiveBlocks() {
  return liveBlocks;
}

void AllocationFailureAfter(std::size_t k) {
  allowedBeforeFailure = k;
  failureFired = false;
  failureArmed = true;
}

void AllocationFailureOff() {
  failureArmed = false;
}

bool AllocationFailureFired() {
  return failureFired;
}

void *operator new(std::size_t size) {
  return Allocate(size);
}
void *operator new[](std::size_t size) {
  return Allocate(size);
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
  return TryAllocate(size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
  return TryAllocate(size);
}
void *operator new(std::size_t size, std::align_val_t alignment) {
  return AllocateAligned(size, alignment);
}
void *operator new[](std::size_t size, std::align_val_t alignment) {
  return AllocateAligned(size, alignment);
}
void operator delete(void *p, std::align_val_t) noexcept {
  FreeAligned(p);
}
void operator delete[](void *p, std::align_val_t) noexcept {
  FreeAligned(p);
}
void operator delete(void *p, std::size_t, std::align_val_t) noexcept {
  FreeAligned(p);
}
void operator delete[](void *p, std::size_t, std::align_val_t) noexcept {
  FreeAligned(p);
}
void operator delete(void *p) noexcept {
  Free(p);
}
void operator delete[](void *p) noexcept {
  Free(p);
}
void operator delete(void *p, std::size_t) noexcept {
  Free(p);
}
void operator delete[](void *p, std::size_t) noexcept {
  Free(p);
}
