#include <ctime>

#include "host/Commands.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "host/Library.h"
#include "host/Terminal.h"

namespace varcolin::host {

namespace {

constexpr std::chrono::milliseconds WatchPeriod(250);
constexpr int LongestSettling = 20;  // periods for which further news are waited for

/// "YYYY-MM-DD HH:MM:SS  " of now, local time.
std::string TimeStamp() {
  const std::time_t now = std::time(nullptr);
  std::string text(32, '\0');
  // the watch is the only thread of the host that asks for the local time
  const std::tm* parts = std::localtime(&now);  // NOLINT(concurrency-mt-unsafe)
  text.resize(parts == nullptr ? 0 : std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S  ", parts));
  return text;
}

/// Waits until discovery has come to rest after a change, so that a program is told of once, with all its details.
void Settle(TDiscovery& ADiscovery) {
  for (int i = 0; i < LongestSettling && !IsInterrupted(); ++i) {
    Pause(WatchPeriod);
    if (!ADiscovery.HasNews()) return;
    static_cast<void>(ADiscovery.Read());
  }
}

}  // namespace

int RunWatch(const TMachineImage& AMachine) {
  const TLibrary library(AMachine);
  TDiscovery discovery(library.Manager());
  CatchInterrupt();
  discovery.WaitUntilLoaded();
  if (IsInterrupted()) return ExitOk;
  std::vector<TProductRecord> known = discovery.Read();
  WriteError("varcolin: watching " + std::to_string(known.size()) + (known.size() == 1 ? " program" : " programs") +
             "; Ctrl-C ends it\n");
  while (!IsInterrupted()) {
    Pause(WatchPeriod);
    if (!discovery.HasNews()) continue;
    Settle(discovery);
    std::vector<TProductRecord> current = discovery.Read();
    std::string text;
    for (const TProductChange& change : CompareReadings(known, current)) {
      const std::string line = DescribeChange(change);
      if (!line.empty()) text += TimeStamp() + line + '\n';
    }
    if (!text.empty()) WriteOutput(text);
    known = std::move(current);
  }
  return ExitOk;
}

}  // namespace varcolin::host
