// ISystemFacts over the real Windows calls.
#pragma once

#include "platform/SystemFacts.h"
#include "platform/windows/LateBinding.h"

namespace varcolin {

class TWindowsSystemFacts final : public ISystemFacts {
 public:
  [[nodiscard]] TWinError GetVersionFacts(TVersionFacts& AFacts) override;
  [[nodiscard]] TWinError ProcessorArchitecture(bool ANative, std::uint16_t& AArchitecture) override;
  [[nodiscard]] TWinError GetProductType(std::uint32_t AMajor, std::uint32_t AMinor, std::uint32_t ASpMajor,
                                         std::uint32_t ASpMinor, std::uint32_t& AType) override;
  [[nodiscard]] TWinError QueryWow64(bool& AIsWow64) override;
  [[nodiscard]] std::int32_t SystemMetric(std::int32_t AIndex) override;
  [[nodiscard]] TWinError GetLocaleText(std::uint32_t ALocale, std::uint32_t AType, std::u16string& AText) override;
  [[nodiscard]] TWinError GetLocaleTextByName(std::u16string_view ALocale, std::uint32_t AType,
                                              std::u16string& AText) override;
  [[nodiscard]] TWinError AnsiToText(std::span<const std::byte> ABytes, std::u16string& AText) override;
  [[nodiscard]] TWinError GetVariable(std::u16string_view AName, std::u16string& AValue) override;
  [[nodiscard]] TWinError ExpandVariables(std::u16string_view AText, std::u16string& AResult) override;
  [[nodiscard]] TWinError GetWindowsFolder(std::u16string& APath) override;
  [[nodiscard]] TWinError GetSystemFolder(std::u16string& APath) override;
  [[nodiscard]] TFileTime UniversalTime() override;
  [[nodiscard]] TWinError ToLocalTime(TFileTime ATime, TFileTime& ALocal) override;
  [[nodiscard]] std::u16string ErrorText(TWinError ACode) override;

 private:
  TLateLibrary FKernel{L"kernel32.dll"};
  TLateFunction<void WINAPI(SYSTEM_INFO*)> FGetNativeSystemInfo{FKernel, "GetNativeSystemInfo"};
  TLateFunction<BOOL WINAPI(DWORD, DWORD, DWORD, DWORD, DWORD*)> FGetProductInfo{FKernel, "GetProductInfo"};
  TLateFunction<BOOL WINAPI(HANDLE, BOOL*)> FIsWow64Process{FKernel, "IsWow64Process"};
  TLateFunction<int WINAPI(LPCWSTR, DWORD, LPWSTR, int)> FGetLocaleInfoEx{FKernel, "GetLocaleInfoEx"};
};

}  // namespace varcolin
