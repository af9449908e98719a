// A running discovery: started, waited for, read.
#pragma once

#include <chrono>
#include <vector>

#include "host/ProductRecord.h"
#include "intf/intf_Varcolin.h"

namespace varcolin::host {

/// The programs and updates that a manager discovers. One thread at a time.
class TDiscovery {
 public:
  /// Starts discovery. AManager outlives this object.
  explicit TDiscovery(IVarcolin& AManager);

  /// Waits until lists and details are complete, or the user interrupts (see CatchInterrupt); shows how far that has
  /// come when a person watches the error stream. Raises EHostError when the library gives up before.
  void WaitUntilLoaded();
  /// Reads all programs or all updates, in the library's order.
  [[nodiscard]] std::vector<TProductRecord> Read(EProductKind AKind = EProductKind::Program);
  /// Reads all programs and then all updates.
  [[nodiscard]] std::vector<TProductRecord> ReadAll();
  /// The listed program that reads like AProgram; null when there is none any more.
  [[nodiscard]] TInterfaceRef<IProduct> ProductOf(const TProductRecord& AProgram);
  /// Of the programs: whether the number of programs differs from that of the last Read, or the details of one have
  /// been read since.
  [[nodiscard]] bool HasNews();

 private:
  /// Calls AFunction with every product of a list while the list is locked.
  template <class TFunction>
  static void ForEach(IProductCollection& AProducts, TFunction AFunction);

  IVarcolin& FManager;
  TInterfaceRef<IBackgroundWork> FWork;  // null when the library does not tell
  TInterfaceRef<IProductCollection> FPrograms;
  TInterfaceRef<IProductCollection> FUpdates;
  std::size_t FCount = 0;  // programs at the last Read
};

/// Sleeps for a moment of real time, or less when the user interrupts.
void Pause(std::chrono::milliseconds ADuration);

}  // namespace varcolin::host
