// Threads that can be asked to end.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace varcolin {

/// A thread that is created suspended, started once and asked, not forced, to end. The destructor asks and waits.
/// Start and WaitFor are for the owner's thread; Terminate and Terminated for any.
class TThread {
 public:
  /// ABody runs on the new thread and receives this object. It must catch its own exceptions.
  explicit TThread(std::function<void(TThread&)> ABody);
  TThread(const TThread&) = delete;
  TThread& operator=(const TThread&) = delete;
  ~TThread();

  /// Starts the body; raises std::system_error when the system has no thread to give.
  void Start();
  /// Asks the body to end soon.
  void Terminate() noexcept { FTerminated = true; }
  [[nodiscard]] bool Terminated() const noexcept { return FTerminated; }
  /// Whether the body has ended. Any thread.
  [[nodiscard]] bool Finished() const noexcept { return FFinished; }
  /// Waits until the body has ended; returns at once when it was never started.
  void WaitFor();

 private:
  std::function<void(TThread&)> FBody;
  std::atomic<bool> FTerminated{false};
  std::atomic<bool> FFinished{false};
  std::thread FThread;
};

}  // namespace varcolin
