#include "host/Progress.h"

#include "host/Cells.h"
#include "host/Terminal.h"

namespace varcolin::host {

TProgress::TProgress() : FIsWatched(IsErrorTerminal()) {}

void TProgress::Show(const std::string& AText) {
  if (!FIsWatched || AText == FShown) return;
  const std::size_t shown = TextCells(FShown);
  const std::size_t cells = TextCells(AText);
  const std::size_t rest = shown > cells ? shown - cells : 0;
  WriteError('\r' + AText + std::string(rest, ' ') + std::string(rest, '\b') + (AText.empty() ? "\r" : ""));
  FShown = AText;
}

}  // namespace varcolin::host
