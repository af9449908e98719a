// IWritableRegistry over the real Windows calls.
#pragma once

#include "platform/Registry.h"
#include "platform/windows/LateBinding.h"

namespace varcolin {

class TWindowsRegistry final : public IWritableRegistry {
 public:
  [[nodiscard]] TWinError OpenKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                  TRegistryKey& AKey) override;
  [[nodiscard]] TWinError QueryKeyInfo(const TRegistryKey& AKey, TRegistryKeyInfo& AInfo) override;
  [[nodiscard]] TWinError EnumKey(const TRegistryKey& AKey, std::uint32_t AIndex, std::u16string& AName) override;
  [[nodiscard]] TWinError EnumValue(const TRegistryKey& AKey, std::uint32_t AIndex, TRegistryValue& AValue) override;
  [[nodiscard]] TWinError QueryValue(const TRegistryKey& AKey, std::u16string_view AName,
                                     TRegistryValue& AValue) override;
  [[nodiscard]] TWinError NotifyChange(const TRegistryKey& AKey, bool ASubtree, std::uint32_t AFilter,
                                       const TEvent& AEvent) override;
  [[nodiscard]] TWinError CreateKeyPath(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                        TRegistryKey& AKey, bool& ACreated) override;
  [[nodiscard]] TWinError SetValue(const TRegistryKey& AKey, std::u16string_view AName, std::uint32_t AType,
                                   const void* AData, std::size_t ASize) override;
  [[nodiscard]] TWinError RemoveValue(const TRegistryKey& AKey, std::u16string_view AName) override;
  [[nodiscard]] TWinError RemoveKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AView) override;
  void CloseValue(TRegistryKeyTag, std::uintptr_t AKey) noexcept override;

 private:
  TLateLibrary FAdvapi{L"advapi32.dll"};
  TLateFunction<LONG WINAPI(HKEY, LPCWSTR, REGSAM, DWORD)> FRegDeleteKeyEx{FAdvapi, "RegDeleteKeyExW"};
};

}  // namespace varcolin
