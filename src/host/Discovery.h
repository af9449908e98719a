// A running discovery: started, waited for, read.
#pragma once

#include <chrono>
#include <vector>

#include "host/ProgramRecord.h"
#include "intf/intf_Varcolin.h"

namespace varcolin::host {

/// The programs that a manager discovers. One thread at a time.
class TDiscovery {
 public:
  /// Starts discovery. AManager outlives this object.
  explicit TDiscovery(IVarcolin& AManager);

  /// Waits until lists and details are complete, or the user interrupts (see CatchInterrupt); shows how far that has
  /// come when a person watches the error stream.
  void WaitUntilLoaded();
  /// Reads all programs, in the library's order.
  [[nodiscard]] std::vector<TProgramRecord> Read();
  /// The listed product that reads like AProgram; null when there is none any more.
  [[nodiscard]] TInterfaceRef<IProduct> ProductOf(const TProgramRecord& AProgram);
  /// Whether the number of programs differs from that of the last Read, or the details of one have been read since.
  [[nodiscard]] bool HasNews();

 private:
  /// Calls AFunction with every program while the list is locked.
  template <class TFunction>
  void ForEachProgram(TFunction AFunction);

  IVarcolin& FManager;
  TInterfaceRef<IProductCollection> FPrograms;
  std::size_t FCount = 0;  // programs at the last Read
};

/// Sleeps for a moment of real time, or less when the user interrupts.
void Pause(std::chrono::milliseconds ADuration);

}  // namespace varcolin::host
