// The interface of the suite's optional "debugmode.dll": a detailed trace of what the programs of the suite do.
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// The debug log. AOwner names the writing class or module, ALevel the depth of detail (0 is always written). Texts are
/// NUL-terminated UTF-16, null for none. Any thread.
struct IDebugLog : IInterface {
  static constexpr TGUID IID{0xF7CF8DA8, 0xADCC, 0x4D0B, {0xBB, 0x10, 0x66, 0x55, 0x2F, 0xC8, 0x51, 0xA9}};

  /// 1, 2: indents what follows, and ends that.
  virtual void VARCOLIN_CALL BeginNesting() = 0;
  virtual void VARCOLIN_CALL EndNesting() = 0;
  /// 3, 4: a procedure is entered.
  virtual void VARCOLIN_CALL BeginProc(const char16_t* AOwner, const char16_t* AProcName, std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL BeginProcNamed(const char16_t* AProcName, std::int32_t ALevel) = 0;
  /// 5, 6: it is left, with a result text or without.
  virtual void VARCOLIN_CALL EndProcResult(const char16_t* AOwner, const char16_t* AResult) = 0;
  virtual void VARCOLIN_CALL EndProc(const char16_t* AOwner) = 0;
  /// 7 to 10: a line of text.
  virtual void VARCOLIN_CALL WriteLog(const char16_t* AOwner, const char16_t* AText, std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL WriteLogText(const char16_t* AText, std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL WriteLogValue(const char16_t* AOwner, const char16_t* AText, const char16_t* AValue,
                                           std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL WriteLogTextValue(const char16_t* AText, const char16_t* AValue, std::int32_t ALevel) = 0;
  /// 11, 12: a line of text that is indented one step more than what surrounds it.
  virtual void VARCOLIN_CALL NestAndWrite(const char16_t* AOwner, const char16_t* AText, std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL NestAndWriteText(const char16_t* AText, std::int32_t ALevel) = 0;
  /// 13: a Windows error code with a remark.
  virtual void VARCOLIN_CALL LogError(const char16_t* AOwner, std::uint32_t AErrorCode, const char16_t* AComment,
                                      std::int32_t ALevel) = 0;
  /// 14: an exception.
  virtual void VARCOLIN_CALL LogException(const char16_t* AOwner, const char16_t* AProcName, const char16_t* AMessage,
                                          std::int32_t ALevel) = 0;
  /// 15 to 19: a value with a remark.
  virtual void VARCOLIN_CALL LogValues(const char16_t* AOwner, const char16_t* AValue, const char16_t* AComment,
                                       std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL LogBoolean(const char16_t* AOwner, bool AValue, const char16_t* AComment,
                                        std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL LogString(const char16_t* AOwner, const char16_t* AValue, const char16_t* AComment,
                                       std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL LogCardinal(const char16_t* AOwner, std::uint32_t AValue, const char16_t* AComment,
                                         std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL LogInteger(const char16_t* AOwner, std::int32_t AValue, const char16_t* AComment,
                                        std::int32_t ALevel) = 0;
  /// 20: the reference count.
  virtual std::int32_t VARCOLIN_CALL GetRefCount() = 0;
  /// 21, 22: whether anything is written.
  virtual bool VARCOLIN_CALL GetEnabled() = 0;
  virtual void VARCOLIN_CALL SetEnabled(bool AValue) = 0;
  /// 23, 24: the system's facts; the running processes.
  virtual void VARCOLIN_CALL LogSystemInfo() = 0;
  virtual void VARCOLIN_CALL LogProcessList() = 0;

 protected:
  ~IDebugLog() = default;
};

/// The debug log that writes nothing, with the operations that it has beyond IDebugLog.
struct INullDebugLog : IDebugLog {
  static constexpr TGUID IID{0xEA0C8456, 0x3864, 0x4944, {0xB0, 0x7A, 0xE8, 0x79, 0x7E, 0xC3, 0x65, 0x94}};

  virtual void VARCOLIN_CALL LogExceptionAt(const char16_t* AOwner, const char16_t* AMessage, const void* AAddress,
                                            std::int32_t ALevel) = 0;
  virtual void VARCOLIN_CALL LogExceptionText(const char16_t* AOwner, const char16_t* AError) = 0;
  virtual void VARCOLIN_CALL LogModuleList() = 0;

 protected:
  ~INullDebugLog() = default;
};

}  // namespace varcolin
