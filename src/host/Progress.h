// The line of progress that a person sees while something takes its time.
#pragma once

#include <string>

namespace varcolin::host {

/// A line on the error stream, rewritten in place and wiped in the end. Shows nothing when no person watches the
/// stream.
class TProgress {
 public:
  TProgress();
  TProgress(const TProgress&) = delete;
  TProgress& operator=(const TProgress&) = delete;
  ~TProgress() { Show({}); }

  /// Whether a person watches.
  [[nodiscard]] bool IsWatched() const noexcept { return FIsWatched; }
  /// Shows a text that is printable and fits a line; an empty one wipes the line.
  void Show(const std::string& AText);

 private:
  bool FIsWatched;
  std::string FShown;
};

}  // namespace varcolin::host
