// The POSIX side of the terminal.
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>

#include "host/Cells.h"
#include "host/HostError.h"
#include "host/Terminal.h"

namespace varcolin::host {

namespace {

std::atomic<bool> Interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "the signal handler sets it");

/// Writes everything; 0, or the error that ended it.
int WriteAll(int AFile, std::string_view AText) noexcept {
  while (!AText.empty()) {
    const ssize_t written = write(AFile, AText.data(), AText.size());
    if (written >= 0) {
      AText.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace

void PrepareTerminal() {
  // a reader that has gone is then told by the write itself
  std::signal(SIGPIPE, SIG_IGN);
}

std::vector<std::string> ProcessArguments(int ACount, const char* const* AArguments) {
  return {AArguments, AArguments + ACount};
}

void WriteOutput(std::string_view AText) {
  const int error = WriteAll(STDOUT_FILENO, AText);
  if (error == EPIPE) throw EClosedPipe();
  if (error != 0) throw EHostError("the output cannot be written: " + std::generic_category().message(error));
}

void WriteError(std::string_view AText) noexcept { static_cast<void>(WriteAll(STDERR_FILENO, AText)); }

bool IsErrorTerminal() noexcept { return isatty(STDERR_FILENO) == 1; }

std::size_t OutputWidth() noexcept {
  if (const std::size_t columns = ColumnsOfEnvironment(); columns != 0) return columns;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) return size.ws_col;
  return isatty(STDOUT_FILENO) == 1 ? 80 : UnlimitedCells;
}

void CatchInterrupt() {
  struct sigaction action {};
  action.sa_handler = [](int) { Interrupted = true; };
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool IsInterrupted() noexcept { return Interrupted; }

}  // namespace varcolin::host
