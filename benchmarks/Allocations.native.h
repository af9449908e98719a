// How much memory the program allocates.
#pragma once

#include <cstddef>

namespace varcolin::benchmarks {

/// While an object of this class lives, the program's allocations are counted, on all threads. At most one at a time.
class TAllocationCount {
 public:
  TAllocationCount() noexcept;
  TAllocationCount(const TAllocationCount&) = delete;
  TAllocationCount& operator=(const TAllocationCount&) = delete;
  ~TAllocationCount();

  /// The most bytes that were allocated at a time over those that were before.
  [[nodiscard]] std::size_t Peak() const noexcept;
};

}  // namespace varcolin::benchmarks
