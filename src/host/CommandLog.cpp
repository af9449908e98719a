// The commands that show the log: log, and refresh-cache, whose outcome stands in it.
#include "host/Cells.h"
#include "host/Commands.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "host/Library.h"
#include "host/LogText.h"
#include "host/Progress.h"
#include "host/Terminal.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

using TContent = std::optional<std::vector<std::byte>>;

constexpr std::chrono::milliseconds LookPeriod(50);

/// The log's text; throws when it could not be read.
std::string TextOf(const TContent& AContent, const std::u16string& APath) {
  if (!AContent) throw EHostError("there is no log at " + Printable(ToUtf8(APath)));
  return DecodeLog({reinterpret_cast<const char*>(AContent->data()), AContent->size()});
}

}  // namespace

int RunLog(const TMachineImage& AMachine) {
  std::u16string path;
  TContent content;
  {
    const TLibrary library(AMachine);
    path = library.LogPath();
    content = library.ReadFile(path);
    if (!content) {
      // a discovery writes its log before it reports that all is loaded, or when it is stopped
      {
        TDiscovery discovery(library.Manager());
        try {
          discovery.WaitUntilLoaded();
        } catch (const EHostError&) {
          // why it failed is what the log is read for
        }
      }
      library.Manager().Stop();
      content = library.ReadFile(path);
    }
  }
  const std::string text = TextOf(content, path);
  WriteOutput(Printable(ToUtf8(path)) + '\n' + text);
  return ExitOk;
}

int RunRefreshCache(const TMachineImage& AMachine) {
  const TLibrary library(AMachine);
  IVarcolin& manager = library.Manager();
  TInterfaceRef<IBackgroundWork> state;
  if (manager.QueryInterface(IBackgroundWork::IID, reinterpret_cast<void**>(state.Receive())) != ResultOk) {
    throw EHostError("the library does not tell when it has refreshed the cache");
  }
  CatchInterrupt();
  manager.RefreshARPCache();
  {
    TProgress progress;
    progress.Show("The shell looks at the programs");
    while (state->IsRefreshingARPCache() && !IsInterrupted()) Pause(LookPeriod);
  }
  manager.Stop();  // whatever had to end it: the log is then written
  const std::u16string path = library.LogPath();
  const std::string text = TextOf(library.ReadFile(path), path);
  const std::size_t begin = text.find("Begin update system ARP Cache.");
  if (begin == text.npos) throw EHostError("the refresh did not begin");
  // this library has done nothing else: all that is logged is about it
  WriteOutput(text);
  if (IsInterrupted()) throw EHostError("ended before the shell was through");
  return text.find("Error class", begin) == text.npos ? ExitOk : ExitFailure;
}

}  // namespace varcolin::host
