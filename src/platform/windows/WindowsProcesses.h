// IProcesses over the real Windows calls.
#pragma once

#include "platform/Processes.h"
#include "platform/windows/LateBinding.h"

namespace varcolin {

struct TWtsProcessInfo;

class TWindowsProcesses final : public IProcesses {
 public:
  [[nodiscard]] TWinError GetUserSid(std::u16string& ASid) override;
  [[nodiscard]] TWinError GetNameOfUser(std::u16string& AName) override;
  [[nodiscard]] TWinError QueryUserIsAdmin(bool& AAnswer) override;
  [[nodiscard]] std::vector<std::u16string> HostArguments() override;
  [[nodiscard]] std::uint32_t CurrentProcessId() override;
  [[nodiscard]] TWinError EnumProcesses(std::vector<TProcessEntry>& AEntries) override;
  [[nodiscard]] TWinError GetProcessPath(std::uint32_t AId, std::u16string& APath) override;
  [[nodiscard]] TWinError OpenToRead(std::uint32_t AId, TProcess& AProcess) override;
  [[nodiscard]] TWinError GetModulePath(const TProcess& AProcess, std::u16string& APath) override;
  [[nodiscard]] TWinError GetImagePath(const TProcess& AProcess, std::u16string& APath) override;
  [[nodiscard]] EWaitResult WaitForEnd(const TProcess& AProcess, std::uint32_t ATimeout) override;
  [[nodiscard]] TWinError GetExitCode(const TProcess& AProcess, std::uint32_t& ACode) override;
  void CloseValue(TProcessTag, std::uintptr_t AProcess) noexcept override;
  void CloseValue(TProcessThreadTag, std::uintptr_t AThread) noexcept override;
  [[noreturn]] void EndOwnProcess(std::uint32_t AExitCode) override;

 private:
  TLateLibrary FKernel{L"kernel32.dll"};
  TLateLibrary FPsapi{L"psapi.dll"};
  TLateLibrary FWtsapi{L"wtsapi32.dll"};
  TLateFunction<BOOL WINAPI(HANDLE, DWORD, LPWSTR, DWORD*)> FQueryImageName{FKernel, "QueryFullProcessImageNameW"};
  TLateFunction<DWORD WINAPI(HANDLE, HMODULE, LPWSTR, DWORD)> FGetModuleFileName{FPsapi, "GetModuleFileNameExW"};
  TLateFunction<DWORD WINAPI(HANDLE, LPWSTR, DWORD)> FGetImageFileName{FPsapi, "GetProcessImageFileNameW"};
  TLateFunction<BOOL WINAPI(HANDLE, DWORD, DWORD, TWtsProcessInfo**, DWORD*)> FEnumProcesses{FWtsapi,
                                                                                             "WTSEnumerateProcessesW"};
  TLateFunction<void WINAPI(void*)> FFreeMemory{FWtsapi, "WTSFreeMemory"};
};

}  // namespace varcolin
