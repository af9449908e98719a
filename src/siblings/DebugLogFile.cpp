#include "siblings/DebugLogFile.h"

#include <algorithm>
#include <span>

#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/SystemFacts.h"
#include "siblings/SuiteFacts.h"
#include "support/uDateTime.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::uint64_t SizeLimit = 16 << 20;
/// Deeper nesting is counted, but not shown: an unbalanced caller must not push the text out of sight.
constexpr std::size_t ShownNesting = 40;

std::u16string TimeText(ISystemFacts& ASystem) {
  const TFileTime universal = ASystem.UniversalTime();
  TFileTime local = universal;
  (void)ASystem.ToLocalTime(universal, local);
  return FormatDateAndTime(FileTimeToSystemTime(local), u":");
}

}  // namespace

TDebugLogFile::TDebugLogFile(const TMachine& AMachine) : FMachine(AMachine) {}

void TDebugLogFile::Write(std::u16string_view AText) {
  const std::lock_guard lock(FLock);
  if (FPath.empty()) Open();
  const auto nesting = FNesting.find(std::this_thread::get_id());
  const std::size_t depth = nesting == FNesting.end() ? 0 : std::min(nesting->second, ShownNesting);
  std::u16string text(AText);
  std::replace_if(
      text.begin(), text.end(), [](char16_t AUnit) { return AUnit < u' '; }, u' ');
  Append(std::u16string(2 * depth, u' ') + text);
}

void TDebugLogFile::Nest() {
  const std::lock_guard lock(FLock);
  ++FNesting[std::this_thread::get_id()];
}

void TDebugLogFile::Unnest() {
  const std::lock_guard lock(FLock);
  const auto nesting = FNesting.find(std::this_thread::get_id());
  if (nesting != FNesting.end() && --nesting->second == 0) FNesting.erase(nesting);
}

void TDebugLogFile::Open() {
  std::u16string folder = SuiteDataFolder(FMachine);
  for (const std::u16string_view part : {Suite::MakerName, Suite::ProductName, std::u16string_view(u"Logs")}) {
    folder.append(u"\\").append(part);
  }
  MakeFolders(FMachine, folder);
  FPath = folder + u"\\debug.log";
  TFileFacts facts;
  if (FMachine.Files.GetFacts(FPath, facts) == WinError::Success && facts.Size > SizeLimit) {
    (void)FMachine.Files.RemoveFile(FPath);
  }
  Append(std::u16string(80, u'-'));
}

void TDebugLogFile::Append(std::u16string_view ALine) {
  const std::u16string process = IntToStr(FMachine.Processes.CurrentProcessId());
  std::u16string line = TimeText(FMachine.System) + u" [" + process + u"] ";
  line.append(ALine).append(u"\r\n");
  const std::string bytes = ToUtf8(line);
  (void)FMachine.Files.AppendBytes(FPath, std::as_bytes(std::span(bytes)));
}

}  // namespace varcolin
