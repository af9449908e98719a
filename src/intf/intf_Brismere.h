// The interface of the suite's "BrismereHelper.dll": the backup service.
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// The backup service. Any thread.
struct IBrismere : IInterface {
  static constexpr TGUID IID{0x5C2990D5, 0x37CD, 0x4FE8, {0x8E, 0xC4, 0xA2, 0x37, 0x23, 0xA7, 0xD4, 0xF1}};

  /// 1: whether the process has administrator rights.
  virtual bool VARCOLIN_CALL IsUserAdmin() = 0;
  /// 2: whether the backup service is installed and able to open sessions.
  virtual bool VARCOLIN_CALL IsEnabled() = 0;

 protected:
  ~IBrismere() = default;
};

}  // namespace varcolin
