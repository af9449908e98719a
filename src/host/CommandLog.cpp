#include "host/Cells.h"
#include "host/Commands.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "host/Library.h"
#include "host/LogText.h"
#include "host/Terminal.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

std::string AsBytes(const std::vector<std::byte>& AContent) {
  return {reinterpret_cast<const char*>(AContent.data()), AContent.size()};
}

}  // namespace

int RunLog(const TMachineImage& AMachine) {
  std::u16string path;
  std::optional<std::vector<std::byte>> content;
  {
    const TLibrary library(AMachine);
    path = library.LogPath();
    content = library.ReadFile(path);
    if (!content) {
      // a discovery writes its log before it reports that all is loaded, or when it is stopped
      {
        TDiscovery discovery(library.Manager());
        discovery.WaitUntilLoaded();
      }
      library.Manager().Stop();
      content = library.ReadFile(path);
    }
  }
  const std::string shownPath = Printable(ToUtf8(path));
  if (!content) throw EHostError("there is no log at " + shownPath);
  WriteOutput(shownPath + '\n' + DecodeLog(AsBytes(*content)));
  return ExitOk;
}

}  // namespace varcolin::host
