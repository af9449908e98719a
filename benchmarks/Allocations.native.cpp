// The program's own operator new and delete: they count what malloc really hands out.
#include "benchmarks/Allocations.native.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> IsCounting{false};
std::atomic<std::int64_t> Allocated{0};
std::atomic<std::int64_t> HighWater{0};

void* Count(void* ABlock) {
  if (ABlock == nullptr) throw std::bad_alloc();
  if (!IsCounting.load(std::memory_order_relaxed)) return ABlock;
  const auto size = static_cast<std::int64_t>(malloc_usable_size(ABlock));
  const std::int64_t now = Allocated.fetch_add(size, std::memory_order_relaxed) + size;
  std::int64_t highest = HighWater.load(std::memory_order_relaxed);
  while (now > highest && !HighWater.compare_exchange_weak(highest, now, std::memory_order_relaxed)) {
  }
  return ABlock;
}

void Free(void* ABlock) noexcept {
  if (ABlock != nullptr && IsCounting.load(std::memory_order_relaxed)) {
    Allocated.fetch_sub(static_cast<std::int64_t>(malloc_usable_size(ABlock)), std::memory_order_relaxed);
  }
  std::free(ABlock);
}

void* AllocateAligned(std::size_t ASize, std::align_val_t AAlignment) {
  const auto alignment = static_cast<std::size_t>(AAlignment);
  return Count(std::aligned_alloc(alignment, (ASize + alignment - 1) / alignment * alignment));
}

}  // namespace

void* operator new(std::size_t ASize) { return Count(std::malloc(std::max<std::size_t>(ASize, 1))); }
void* operator new(std::size_t ASize, std::align_val_t AAlignment) { return AllocateAligned(ASize, AAlignment); }
void operator delete(void* ABlock) noexcept { Free(ABlock); }
void operator delete(void* ABlock, std::size_t) noexcept { Free(ABlock); }
void operator delete(void* ABlock, std::align_val_t) noexcept { Free(ABlock); }
void operator delete(void* ABlock, std::size_t, std::align_val_t) noexcept { Free(ABlock); }

namespace varcolin::benchmarks {

TAllocationCount::TAllocationCount() noexcept {
  Allocated = 0;
  HighWater = 0;
  IsCounting = true;
}

TAllocationCount::~TAllocationCount() { IsCounting = false; }

std::size_t TAllocationCount::Peak() const noexcept { return static_cast<std::size_t>(HighWater.load()); }

}  // namespace varcolin::benchmarks
