// System facts and processes that forward to others.
#pragma once

#include <cstdlib>

#include "platform/Processes.h"
#include "platform/SystemFacts.h"
#include "platform/decorators/CallGate.h"

namespace varcolin {

/// Forwards each call to another facility when the gate admits it.
class TForwardingSystemFacts : public TForwarding<ISystemFacts> {
 public:
  explicit TForwardingSystemFacts(ISystemFacts& AInner, ICallGate& AGate = OpenGate)
      : TForwarding(AInner, AGate, "System") {}

  [[nodiscard]] TWinError GetVersionFacts(TVersionFacts& AFacts) override {
    return Look("GetVersionFacts", {}, [&] { return Inner().GetVersionFacts(AFacts); });
  }
  [[nodiscard]] TWinError ProcessorArchitecture(bool ANative, std::uint16_t& AArchitecture) override {
    return Look("ProcessorArchitecture", {}, [&] { return Inner().ProcessorArchitecture(ANative, AArchitecture); });
  }
  [[nodiscard]] TWinError GetProductType(std::uint32_t AMajor, std::uint32_t AMinor, std::uint32_t ASpMajor,
                                         std::uint32_t ASpMinor, std::uint32_t& AType) override {
    return Look("GetProductType", {},
                [&] { return Inner().GetProductType(AMajor, AMinor, ASpMajor, ASpMinor, AType); });
  }
  [[nodiscard]] TWinError QueryWow64(bool& AIsWow64) override {
    return Look("QueryWow64", {}, [&] { return Inner().QueryWow64(AIsWow64); });
  }
  [[nodiscard]] std::int32_t SystemMetric(std::int32_t AIndex) override {
    Show("SystemMetric");
    return Inner().SystemMetric(AIndex);
  }
  [[nodiscard]] TWinError GetLocaleText(std::uint32_t ALocale, std::uint32_t AType, std::u16string& AText) override {
    return Look("GetLocaleText", {}, [&] { return Inner().GetLocaleText(ALocale, AType, AText); });
  }
  [[nodiscard]] TWinError GetLocaleTextByName(std::u16string_view ALocale, std::uint32_t AType,
                                              std::u16string& AText) override {
    return Look("GetLocaleTextByName", ALocale, [&] { return Inner().GetLocaleTextByName(ALocale, AType, AText); });
  }
  [[nodiscard]] TWinError AnsiToText(std::span<const std::byte> ABytes, std::u16string& AText) override {
    return Look("AnsiToText", {}, [&] { return Inner().AnsiToText(ABytes, AText); });
  }
  [[nodiscard]] TWinError GetVariable(std::u16string_view AName, std::u16string& AValue) override {
    return Look("GetVariable", AName, [&] { return Inner().GetVariable(AName, AValue); });
  }
  [[nodiscard]] TWinError ExpandVariables(std::u16string_view AText, std::u16string& AResult) override {
    return Look("ExpandVariables", AText, [&] { return Inner().ExpandVariables(AText, AResult); });
  }
  [[nodiscard]] TWinError GetWindowsFolder(std::u16string& APath) override {
    return Look("GetWindowsFolder", {}, [&] { return Inner().GetWindowsFolder(APath); });
  }
  [[nodiscard]] TWinError GetSystemFolder(std::u16string& APath) override {
    return Look("GetSystemFolder", {}, [&] { return Inner().GetSystemFolder(APath); });
  }
  [[nodiscard]] TFileTime UniversalTime() override {
    Show("UniversalTime");
    return Inner().UniversalTime();
  }
  [[nodiscard]] TWinError ToLocalTime(TFileTime ATime, TFileTime& ALocal) override {
    return Look("ToLocalTime", {}, [&] { return Inner().ToLocalTime(ATime, ALocal); });
  }
  [[nodiscard]] std::u16string ErrorText(TWinError ACode) override {
    Show("ErrorText");
    return Inner().ErrorText(ACode);
  }
};

/// Forwards each call to another facility when the gate admits it.
class TForwardingProcesses : public TForwarding<IProcesses> {
 public:
  explicit TForwardingProcesses(IProcesses& AInner, ICallGate& AGate = OpenGate)
      : TForwarding(AInner, AGate, "Processes") {}

  [[nodiscard]] TWinError GetUserSid(std::u16string& ASid) override {
    return Look("GetUserSid", {}, [&] { return Inner().GetUserSid(ASid); });
  }
  [[nodiscard]] TWinError GetNameOfUser(std::u16string& AName) override {
    return Look("GetNameOfUser", {}, [&] { return Inner().GetNameOfUser(AName); });
  }
  [[nodiscard]] TWinError QueryUserIsAdmin(bool& AAnswer) override {
    return Look("QueryUserIsAdmin", {}, [&] { return Inner().QueryUserIsAdmin(AAnswer); });
  }
  [[nodiscard]] std::vector<std::u16string> HostArguments() override {
    Show("HostArguments");
    return Inner().HostArguments();
  }
  [[nodiscard]] std::uint32_t CurrentProcessId() override {
    Show("CurrentProcessId");
    return Inner().CurrentProcessId();
  }
  [[nodiscard]] TWinError EnumProcesses(std::vector<TProcessEntry>& AEntries) override {
    return Look("EnumProcesses", {}, [&] { return Inner().EnumProcesses(AEntries); });
  }
  [[nodiscard]] TWinError GetProcessPath(std::uint32_t AId, std::u16string& APath) override {
    return Look("GetProcessPath", {}, [&] { return Inner().GetProcessPath(AId, APath); });
  }
  [[nodiscard]] TWinError OpenToRead(std::uint32_t AId, TProcess& AProcess) override {
    return Look("OpenToRead", {}, [&] { return Inner().OpenToRead(AId, AProcess); });
  }
  [[nodiscard]] TWinError GetModulePath(const TProcess& AProcess, std::u16string& APath) override {
    return Look("GetModulePath", {}, [&] { return Inner().GetModulePath(AProcess, APath); });
  }
  [[nodiscard]] TWinError GetImagePath(const TProcess& AProcess, std::u16string& APath) override {
    return Look("GetImagePath", {}, [&] { return Inner().GetImagePath(AProcess, APath); });
  }
  [[nodiscard]] EWaitResult WaitForEnd(const TProcess& AProcess, std::uint32_t ATimeout) override {
    Show("WaitForEnd");
    return Inner().WaitForEnd(AProcess, ATimeout);
  }
  [[nodiscard]] TWinError GetExitCode(const TProcess& AProcess, std::uint32_t& ACode) override {
    return Look("GetExitCode", {}, [&] { return Inner().GetExitCode(AProcess, ACode); });
  }
  void CloseValue(TProcessTag ATag, std::uintptr_t AProcess) noexcept override { Inner().CloseValue(ATag, AProcess); }
  void CloseValue(TProcessThreadTag ATag, std::uintptr_t AThread) noexcept override {
    Inner().CloseValue(ATag, AThread);
  }
  [[noreturn]] void EndOwnProcess(std::uint32_t AExitCode) override {
    Show("EndOwnProcess");
    Inner().EndOwnProcess(AExitCode);
    std::abort();  // never reached; the compiler does not see that a virtual function cannot return
  }
};

}  // namespace varcolin
