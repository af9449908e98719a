// The location that gathers what is known of programs' executables.
#pragma once

#include "locations/uLocationUninstall.h"

namespace varcolin {

/// It finds no programs of its own and never reports changes. Nothing gathers executables yet.
class TLocationExeInfo final : public TLocationUninstall {
 public:
  TLocationExeInfo() : TLocationUninstall(TTypeUninstallLocation::ulExeInfo) {}
  void ReadLocation() override {}
  [[nodiscard]] bool CheckChanges() override { return false; }
};

}  // namespace varcolin
