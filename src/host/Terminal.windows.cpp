// The Windows side of the terminal. A console is written in UTF-16, so that its code page does not matter; files and
// pipes get UTF-8.
#include <algorithm>
#include <atomic>
#include <memory>

#include "host/Cells.h"
#include "host/HostError.h"
#include "host/SystemCalls.windows.h"
#include "host/Terminal.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

constexpr std::uint32_t ErrorBrokenPipe = 109;
constexpr std::uint32_t ErrorNoData = 232;  // the reader of a pipe closes it while something is written
constexpr std::uint32_t CtrlC = 0;
constexpr std::uint32_t CtrlBreak = 1;

std::atomic<bool> Interrupted = false;

bool IsConsole(TSystemHandle AStream) noexcept {
  std::uint32_t mode = 0;
  return GetConsoleMode(AStream, &mode) != 0;
}

std::uint32_t WriteConsoleText(TSystemHandle AConsole, std::string_view AText) {
  constexpr std::size_t chunk = 8'192;  // a console takes no more than 64 KB in one go
  const std::u16string text = ToUtf16(AText);
  std::u16string_view rest = text;
  while (!rest.empty()) {
    std::size_t length = std::min(rest.size(), chunk);
    if (length < rest.size() && rest[length - 1] >= 0xD800 && rest[length - 1] <= 0xDBFF) --length;
    std::uint32_t written = 0;
    if (WriteConsoleW(AConsole, rest.data(), static_cast<std::uint32_t>(length), &written, nullptr) == 0) {
      return GetLastError();
    }
    if (written == 0) break;
    rest.remove_prefix(written);
  }
  return 0;
}

/// Writes everything; 0, or the Windows error that ended it.
std::uint32_t WriteAll(std::uint32_t AStream, std::string_view AText) {
  constexpr std::size_t chunk = 1'048'576;
  const TSystemHandle stream = GetStdHandle(AStream);
  if (IsConsole(stream)) return WriteConsoleText(stream, AText);
  while (!AText.empty()) {
    const auto length = static_cast<std::uint32_t>(std::min(AText.size(), chunk));
    std::uint32_t written = 0;
    if (WriteFile(stream, AText.data(), length, &written, nullptr) == 0) return GetLastError();
    AText.remove_prefix(written);
  }
  return 0;
}

int __stdcall HandleControl(std::uint32_t AKind) {
  if (AKind != CtrlC && AKind != CtrlBreak) return 0;
  return Interrupted.exchange(true) ? 0 : 1;
}

}  // namespace

void PrepareTerminal() {}

std::vector<std::string> ProcessArguments(int ACount, const char* const* AArguments) {
  int count = 0;
  const auto release = [](wchar_t** AList) { LocalFree(AList); };
  const std::unique_ptr<wchar_t*, decltype(release)> list(CommandLineToArgvW(GetCommandLineW(), &count), release);
  if (list == nullptr) return {AArguments, AArguments + ACount};
  std::vector<std::string> result;
  for (int i = 0; i < count; ++i) {
    const std::wstring_view argument = list.get()[i];
    result.push_back(ToUtf8(std::u16string(argument.begin(), argument.end())));
  }
  return result;
}

void WriteOutput(std::string_view AText) {
  const std::uint32_t error = WriteAll(StandardOutput, AText);
  if (error == ErrorBrokenPipe || error == ErrorNoData) throw EClosedPipe();
  if (error != 0) throw EHostError("the output cannot be written: Windows error " + std::to_string(error));
}

void WriteError(std::string_view AText) noexcept {
  try {
    static_cast<void>(WriteAll(StandardError, AText));
  } catch (const std::bad_alloc&) {
    // without memory there is no message either
  }
}

bool IsErrorTerminal() noexcept { return IsConsole(GetStdHandle(StandardError)); }

std::size_t OutputWidth() noexcept {
  if (const std::size_t columns = ColumnsOfEnvironment(); columns != 0) return columns;
  TScreenBufferInfo info{};
  if (GetConsoleScreenBufferInfo(GetStdHandle(StandardOutput), &info) == 0) return UnlimitedCells;
  // a console breaks the line when its last cell is written
  return static_cast<std::size_t>(std::max(info.Right - info.Left, 1));
}

void CatchInterrupt() { SetConsoleCtrlHandler(HandleControl, 1); }

bool IsInterrupted() noexcept { return Interrupted; }

}  // namespace varcolin::host
