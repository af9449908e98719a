// COM initialisation on a simulated machine: only the book-keeping of who has joined.
#pragma once

#include <cstddef>
#include <mutex>
#include <thread>
#include <unordered_map>

#include "platform/Com.h"

namespace varcolin {

/// Any thread.
class TSimulatedCom final : public ICom {
 public:
  [[nodiscard]] bool JoinCom(ECom AKind) override {
    const std::lock_guard lock(FMutex);
    TJoined& joined = FThreads.try_emplace(std::this_thread::get_id(), TJoined{AKind, 0}).first->second;
    if (joined.Kind != AKind) return false;
    ++joined.Count;
    return true;
  }
  void LeaveCom() noexcept override {
    const std::lock_guard lock(FMutex);
    const auto found = FThreads.find(std::this_thread::get_id());
    if (found == FThreads.end()) {
      ++FUnmatchedLeaves;
    } else if (--found->second.Count == 0) {
      FThreads.erase(found);
    }
  }

  /// Whether the calling thread has joined.
  [[nodiscard]] bool HasJoined() {
    const std::lock_guard lock(FMutex);
    return FThreads.contains(std::this_thread::get_id());
  }
  /// Threads that have joined and not left yet, and calls of LeaveCom without a JoinCom; 0 when all is in balance.
  [[nodiscard]] std::size_t OpenHandleCount() {
    const std::lock_guard lock(FMutex);
    return FThreads.size() + FUnmatchedLeaves;
  }

 private:
  struct TJoined {
    ECom Kind;
    std::size_t Count;
  };

  std::mutex FMutex;
  std::unordered_map<std::thread::id, TJoined> FThreads;
  std::size_t FUnmatchedLeaves = 0;
};

}  // namespace varcolin
