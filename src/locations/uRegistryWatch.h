// The change watch on the registry keys that name installed software.
#pragma once

#include <vector>

#include "platform/Registry.h"
#include "platform/Sync.h"

namespace varcolin {

/// Watches the uninstall, installer and hotfix keys of machine and user, with all their subkeys. One thread.
class TRegistryWatch {
 public:
  /// Raises EOSError when the event cannot be created. Arm starts the watch.
  TRegistryWatch(IRegistry& ARegistry, ISync& ASync);

  /// Watches anew, from now on. Keys that do not open are left out.
  void Arm();
  /// Whether a watched key has changed since Arm.
  [[nodiscard]] bool IsSignaled();

 private:
  IRegistry& FRegistry;
  ISync& FSync;
  TEvent FWaitEvent;
  std::vector<TRegistryKey> FWaitRegHandle;  ///< after the event: keys are closed before it
};

}  // namespace varcolin
