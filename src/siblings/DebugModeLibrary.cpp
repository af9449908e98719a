// "debugmode.dll": a detailed trace of what the programs of the suite do.
//
// Nothing is written until SetEnabled. Lines of every level are written; the DWORD value "Level" under
// HKEY_CURRENT_USER, "Software\Zentrova\DebugMode", limits them to that level and those below it.
#include <atomic>
#include <limits>

#include "intf/intf_DebugLog.h"
#include "platform/Modules.h"
#include "platform/Processes.h"
#include "platform/SystemFacts.h"
#include "siblings/DebugLogFile.h"
#include "siblings/SiblingLibrary.h"
#include "siblings/SuiteFacts.h"
#include "support/uInterfacedObject.h"
#include "support/uText.h"

namespace varcolin {
namespace {

std::u16string Joined(std::u16string_view AFirst, std::u16string_view ASeparator, std::u16string_view ASecond) {
  if (AFirst.empty() || ASecond.empty()) return std::u16string(AFirst.empty() ? ASecond : AFirst);
  return std::u16string(AFirst).append(ASeparator).append(ASecond);
}

std::u16string_view BooleanText(bool AValue) { return AValue ? u"True" : u"False"; }

class TDebugLog final : public TInterfacedObject<IDebugLog> {
 public:
  explicit TDebugLog(const TMachine& AMachine) : FMachine(AMachine), FFile(AMachine) {}

  void VARCOLIN_CALL BeginNesting() override {
    Run(0, [&] { FFile.Nest(); });
  }
  void VARCOLIN_CALL EndNesting() override {
    Run(0, [&] { FFile.Unnest(); });
  }
  void VARCOLIN_CALL BeginProc(const char16_t* AOwner, const char16_t* AProcName, std::int32_t ALevel) override {
    Write(ALevel, [&] { return u"> " + Joined(TextOf(AOwner), u".", TextOf(AProcName)); });
    BeginNesting();
  }
  void VARCOLIN_CALL BeginProcNamed(const char16_t* AProcName, std::int32_t ALevel) override {
    BeginProc(nullptr, AProcName, ALevel);
  }
  void VARCOLIN_CALL EndProcResult(const char16_t* AOwner, const char16_t* AResult) override {
    EndNesting();
    Write(0, [&] { return u"< " + Joined(TextOf(AOwner), u": ", TextOf(AResult)); });
  }
  void VARCOLIN_CALL EndProc(const char16_t* AOwner) override { EndProcResult(AOwner, nullptr); }

  void VARCOLIN_CALL WriteLog(const char16_t* AOwner, const char16_t* AText, std::int32_t ALevel) override {
    Write(ALevel, [&] { return Joined(TextOf(AOwner), u": ", TextOf(AText)); });
  }
  void VARCOLIN_CALL WriteLogText(const char16_t* AText, std::int32_t ALevel) override {
    WriteLog(nullptr, AText, ALevel);
  }
  void VARCOLIN_CALL WriteLogValue(const char16_t* AOwner, const char16_t* AText, const char16_t* AValue,
                                   std::int32_t ALevel) override {
    WriteValue(AOwner, AText, TextOf(AValue), ALevel);
  }
  void VARCOLIN_CALL WriteLogTextValue(const char16_t* AText, const char16_t* AValue, std::int32_t ALevel) override {
    WriteValue(nullptr, AText, TextOf(AValue), ALevel);
  }
  void VARCOLIN_CALL NestAndWrite(const char16_t* AOwner, const char16_t* AText, std::int32_t ALevel) override {
    BeginNesting();
    WriteLog(AOwner, AText, ALevel);
    EndNesting();
  }
  void VARCOLIN_CALL NestAndWriteText(const char16_t* AText, std::int32_t ALevel) override {
    NestAndWrite(nullptr, AText, ALevel);
  }

  void VARCOLIN_CALL LogError(const char16_t* AOwner, std::uint32_t AErrorCode, const char16_t* AComment,
                              std::int32_t ALevel) override {
    Write(ALevel, [&] {
      const std::u16string what = Joined(TextOf(AOwner), u": ", TextOf(AComment));
      const std::u16string code = u"error " + IntToStr(AErrorCode);
      return Joined(what, u": ", Joined(code, u", ", FMachine.System.ErrorText(AErrorCode)));
    });
  }
  void VARCOLIN_CALL LogException(const char16_t* AOwner, const char16_t* AProcName, const char16_t* AMessage,
                                  std::int32_t ALevel) override {
    Write(ALevel, [&] {
      const std::u16string where = Joined(TextOf(AOwner), u".", TextOf(AProcName));
      return Joined(where, u": ", Joined(u"exception", u": ", TextOf(AMessage)));
    });
  }

  void VARCOLIN_CALL LogValues(const char16_t* AOwner, const char16_t* AValue, const char16_t* AComment,
                               std::int32_t ALevel) override {
    WriteValue(AOwner, AComment, TextOf(AValue), ALevel);
  }
  void VARCOLIN_CALL LogBoolean(const char16_t* AOwner, bool AValue, const char16_t* AComment,
                                std::int32_t ALevel) override {
    WriteValue(AOwner, AComment, BooleanText(AValue), ALevel);
  }
  void VARCOLIN_CALL LogString(const char16_t* AOwner, const char16_t* AValue, const char16_t* AComment,
                               std::int32_t ALevel) override {
    Run(ALevel, [&] { WriteValue(AOwner, AComment, u"\"" + std::u16string(TextOf(AValue)) + u"\"", ALevel); });
  }
  void VARCOLIN_CALL LogCardinal(const char16_t* AOwner, std::uint32_t AValue, const char16_t* AComment,
                                 std::int32_t ALevel) override {
    Run(ALevel, [&] { WriteValue(AOwner, AComment, IntToStr(AValue), ALevel); });
  }
  void VARCOLIN_CALL LogInteger(const char16_t* AOwner, std::int32_t AValue, const char16_t* AComment,
                                std::int32_t ALevel) override {
    Run(ALevel, [&] { WriteValue(AOwner, AComment, IntToStr(AValue), ALevel); });
  }

  std::int32_t VARCOLIN_CALL GetRefCount() override {
    AddRef();
    return static_cast<std::int32_t>(Release());
  }
  bool VARCOLIN_CALL GetEnabled() override { return FEnabled; }
  void VARCOLIN_CALL SetEnabled(bool AValue) override {
    GuardedCall([&] {
      if (AValue) FMaxLevel = LevelLimit();
      FEnabled = AValue;
    });
  }

  void VARCOLIN_CALL LogSystemInfo() override {
    Run(0, [&] {
      ISystemFacts& system = FMachine.System;
      TVersionFacts version;
      if (system.GetVersionFacts(version) == WinError::Success) {
        const std::u16string number =
            IntToStr(version.Major) + u"." + IntToStr(version.Minor) + u"." + IntToStr(version.Build);
        FFile.Write(u"Windows: " + Joined(number, u", ", version.ServicePackText));
      }
      std::uint16_t architecture = 0;
      if (system.ProcessorArchitecture(true, architecture) == WinError::Success) {
        FFile.Write(u"Processor architecture: " + IntToStr(architecture));
      }
      bool isWow64 = false;
      if (system.QueryWow64(isWow64) == WinError::Success) {
        FFile.Write(std::u16string(u"32-bit process on 64-bit Windows: ").append(BooleanText(isWow64)));
      }
      std::u16string text;
      if (FMachine.Modules.GetHostPath(text) == WinError::Success) FFile.Write(u"Program: " + text);
      if (FMachine.Processes.GetNameOfUser(text) == WinError::Success) FFile.Write(u"User: " + text);
    });
  }

  void VARCOLIN_CALL LogProcessList() override {
    Run(0, [&] {
      std::vector<TProcessEntry> entries;
      if (FMachine.Processes.EnumProcesses(entries) != WinError::Success) return;
      for (const TProcessEntry& entry : entries) {
        std::u16string path = entry.Name;
        (void)FMachine.Processes.GetProcessPath(entry.Id, path);
        FFile.Write(u"Process " + Joined(IntToStr(entry.Id), u": ", path));
      }
    });
  }

 private:
  std::int32_t LevelLimit() {
    constexpr std::uint32_t all = std::numeric_limits<std::int32_t>::max();
    const std::uint32_t level = ReadUserNumber(FMachine, Suite::DebugModeKey, u"Level").value_or(all);
    return static_cast<std::int32_t>(level < all ? level : all);
  }

  template <class TBody>
  void Run(std::int32_t ALevel, TBody&& ABody) noexcept {
    if (FEnabled && ALevel <= FMaxLevel) GuardedCall(ABody);
  }
  /// ATextOf is not called when the line is not written.
  template <class TTextMaker>
  void Write(std::int32_t ALevel, TTextMaker&& ATextOf) noexcept {
    Run(ALevel, [&] { FFile.Write(ATextOf()); });
  }
  void WriteValue(const char16_t* AOwner, const char16_t* AText, std::u16string_view AValue, std::int32_t ALevel) {
    Write(ALevel, [&] { return Joined(Joined(TextOf(AOwner), u": ", TextOf(AText)), u" = ", AValue); });
  }

  TMachine FMachine;
  TDebugLogFile FFile;
  std::atomic<bool> FEnabled{false};
  std::atomic<std::int32_t> FMaxLevel{0};
};

class TDebugModeLibrary final : public TSiblingLibrary {
 public:
  explicit TDebugModeLibrary(const TMachine& AMachine) : FLog(MakeObject<TDebugLog, IDebugLog>(AMachine)) {}

  void* FindInterface(std::u16string_view ARequest) override {
    return IsRequestFor(ARequest, IDebugLog::IID) ? FLog.Get() : nullptr;
  }

 private:
  TInterfaceRef<IDebugLog> FLog;
};

}  // namespace

std::unique_ptr<TSiblingLibrary> MakeDebugModeLibrary(const TMachine& AMachine) {
  return std::make_unique<TDebugModeLibrary>(AMachine);
}

}  // namespace varcolin
