// The thread that renews what the shell keeps about the installed programs.
#pragma once

#include "support/uThread.h"

namespace varcolin {

class IAppManager;
class ICom;
class ISync;
class ISystemFacts;

/// Makes the shell work out the slow information of every installed application (size, last use, number of uses), which
/// the shell keeps and the list of programs shows. What the shell answers is dropped. Runs at the lowest priority, so
/// that the shell's work does not compete with the host; asked to end, it does at the next application. Its owner
/// starts it, asks it to end, and waits for it.
class TRefreshARPCache final : public TThread {
 public:
  static void Load(IAppManager& AApps, ISystemFacts& ASystem, ISync& ASync, ICom& ACom) noexcept;
  static void Unload() noexcept;

  /// The thread is made suspended.
  TRefreshARPCache() : TThread(&Execute) {}

 private:
  struct TFacilities {
    IAppManager* Apps;
    ISystemFacts* System;
    ISync* Sync;
    ICom* Com;
  };

  static void Execute(const TThread& AThread) noexcept;
  static void LogWalk(const TThread& AThread);
  static void Walk(const TThread& AThread);

  static inline TFacilities FFacilities{};
};

}  // namespace varcolin
