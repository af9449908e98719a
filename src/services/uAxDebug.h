// The client of the suite's optional debug log.
#pragma once

#include "intf/intf_Base.h"
#include "intf/intf_DebugLog.h"
#include "support/uInterfacedObject.h"

namespace varcolin {

class IFiles;
class IMessageBoxes;
class IModules;
class IProcesses;
class ISync;
class IWritableRegistry;

/// The debug log that writes nothing. Any thread.
class TNullDebugClient final : public TInterfacedObject<INullDebugLog> {
 public:
  TResultCode VARCOLIN_CALL QueryInterface(const TGUID& AIID, void** AObject) override;

  void VARCOLIN_CALL BeginNesting() override {}
  void VARCOLIN_CALL EndNesting() override {}
  void VARCOLIN_CALL BeginProc(const char16_t*, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL BeginProcNamed(const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL EndProcResult(const char16_t*, const char16_t*) override {}
  void VARCOLIN_CALL EndProc(const char16_t*) override {}
  void VARCOLIN_CALL WriteLog(const char16_t*, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL WriteLogText(const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL WriteLogValue(const char16_t*, const char16_t*, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL WriteLogTextValue(const char16_t*, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL NestAndWrite(const char16_t*, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL NestAndWriteText(const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL LogError(const char16_t*, std::uint32_t, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL LogException(const char16_t*, const char16_t*, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL LogValues(const char16_t*, const char16_t*, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL LogBoolean(const char16_t*, bool, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL LogString(const char16_t*, const char16_t*, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL LogCardinal(const char16_t*, std::uint32_t, const char16_t*, std::int32_t) override {}
  void VARCOLIN_CALL LogInteger(const char16_t*, std::int32_t, const char16_t*, std::int32_t) override {}
  std::int32_t VARCOLIN_CALL GetRefCount() override;
  bool VARCOLIN_CALL GetEnabled() override { return false; }
  void VARCOLIN_CALL SetEnabled(bool) override {}
  void VARCOLIN_CALL LogSystemInfo() override {}
  void VARCOLIN_CALL LogProcessList() override {}
  void VARCOLIN_CALL LogExceptionAt(const char16_t*, const char16_t*, const void*, std::int32_t) override {}
  void VARCOLIN_CALL LogExceptionText(const char16_t*, const char16_t*) override {}
  void VARCOLIN_CALL LogModuleList() override {}
};

/// Class operations only. The choice between the real and the null client is made once, by Load.
class AxDebug {
 public:
  /// Settles whether debug mode is on: only with "debugmode.dll" beside the host program, and when the user's setting
  /// or the host's first argument says so. Without that library the setting is reset. SiblingLoader is loaded before.
  static void Load(IWritableRegistry& ARegistry, IFiles& AFiles, IModules& AModules, IProcesses& AProcesses);
  static void Unload() noexcept;

  /// The debug log in force. Any thread.
  [[nodiscard]] static TInterfaceRef<IDebugLog> DebugLog();

  /// Tells the user that debug mode is on and offers to switch it off, unless another running program of the suite has
  /// done so. The mutex by which the others see this lives until Unload. DLLGlobals is loaded before.
  static void ShowWarning(ISync& ASync, IMessageBoxes& AMessages);
};

}  // namespace varcolin
