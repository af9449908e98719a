// The interface of the suite's "Settings.dll".
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// For which programs of the suite backups are made.
struct IBrismereSettings : IInterface {
  static constexpr TGUID IID{0xEFD8173C, 0xC76D, 0x4A9A, {0x87, 0xBF, 0x35, 0x9D, 0x2E, 0xD0, 0x8A, 0xFE}};

  /// 1: whether backups are enabled for the program with this executable name, for example "varcolin.exe".
  virtual bool VARCOLIN_CALL IsEnabledFor(const char16_t* AExecutable) = 0;

 protected:
  ~IBrismereSettings() = default;
};

/// The suite's settings.
struct ISettings : IInterface {
  static constexpr TGUID IID{0xEFD8173C, 0xC76D, 0x4A9A, {0x87, 0xBF, 0x35, 0x9D, 0x2E, 0xD0, 0x8A, 0xFD}};

  virtual TResultCode VARCOLIN_CALL Reserved1() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved2() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved3() { return ResultNotImplemented; }
  /// 4: writes the per-program settings of the backup tool, with a reference of the caller's own.
  virtual void VARCOLIN_CALL GetBrismereSettings(IBrismereSettings** AResult) = 0;

 protected:
  ~ISettings() = default;
};

}  // namespace varcolin
