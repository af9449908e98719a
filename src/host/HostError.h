// What ends a command early, and the exit codes of the host.
#pragma once

#include <exception>
#include <stdexcept>
#include <string>

namespace varcolin::host {

inline constexpr int ExitOk = 0;
inline constexpr int ExitFailure = 1;  ///< nothing found, output that cannot be written, a library that does not load
inline constexpr int ExitUsage = 2;    ///< wrong usage, or a machine image that cannot be read

/// Ends a command with one sentence on the error stream (UTF-8) and an exit code.
class EHostError : public std::runtime_error {
 public:
  explicit EHostError(const std::string& AMessage, int AExitCode = ExitFailure)
      : std::runtime_error(AMessage), FExitCode(AExitCode) {}
  [[nodiscard]] int ExitCode() const noexcept { return FExitCode; }

 private:
  int FExitCode;
};

/// The reader of the output has gone: nobody is left to tell anything, so the command ends without a word.
class EClosedPipe : public std::exception {};

}  // namespace varcolin::host
