// The thread that runs one action of a product.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "intf/intf_Varcolin.h"
#include "support/uThread.h"

namespace varcolin {

class ICom;
class IProcesses;
class ISync;
class TItemProduct;

/// The name of an action as the log shows it.
[[nodiscard]] std::u16string_view TextOf(TPossibleActions AAction) noexcept;

/// Starts an action's command as the current user, waits until its process has ended, and then for the copy of itself
/// that an uninstaller may have left in its place. The process is never ended, only waited for. The thread's last step
/// is to tell the product, which it does not own: the product waits for it before it goes.
class TExecuteActionThread {
 public:
  static void Load(ISync& ASync, IProcesses& AProcesses, ICom& ACom) noexcept;
  static void Unload() noexcept;

  /// The thread is made suspended.
  TExecuteActionThread(TItemProduct& AProduct, TPossibleActions AAction);

  /// Starts the thread; raises std::system_error when the system has none to give.
  void Start() { FThread.Start(); }
  /// Asks the thread to end; it does within 100 ms of its next wait. Any thread.
  void Terminate() noexcept { FThread.Terminate(); }
  [[nodiscard]] TPossibleActions Action() const noexcept { return FAction; }
  /// The first top window of the command's process that is fit to show; 0 when there is none. Raises EOSError when the
  /// windows cannot be listed. Any thread.
  [[nodiscard]] TNativeUInt GetWindowTop() const;

 private:
  struct TFacilities {
    ISync* Sync;
    IProcesses* Processes;
    ICom* Com;
  };

  void Execute();
  void RunCommand(std::u16string_view ACommand);
  void WaitForProcess(std::u16string_view ACommand);

  static inline TFacilities FFacilities{};
  TItemProduct& FProduct;
  const TPossibleActions FAction;
  std::atomic<std::uint32_t> FProcessId{0};  ///< of the command; 0 until it has started
  TThread FThread;                           // last: it ends before the rest goes
};

}  // namespace varcolin
