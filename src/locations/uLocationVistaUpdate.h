// The location that finds the component-based-servicing packages of Windows Vista and later.
#pragma once

#include "locations/uLocationUninstall.h"

namespace varcolin {

/// Package manifests are not read yet: it finds nothing and never reports changes.
class TLocationVistaUpdate final : public TLocationUninstall {
 public:
  TLocationVistaUpdate() : TLocationUninstall(TTypeUninstallLocation::ulVistaUpdate) {}
  void ReadLocation() override {}
  [[nodiscard]] bool CheckChanges() override { return false; }
};

}  // namespace varcolin
