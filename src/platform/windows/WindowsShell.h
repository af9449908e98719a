// IShell over the real Windows calls.
#pragma once

#include "platform/Shell.h"
#include "platform/windows/LateBinding.h"

namespace varcolin {

class TWindowsShell final : public IShell {
 public:
  [[nodiscard]] TWinError GetSpecialFolder(std::int32_t ACsidl, std::u16string& APath) override;
  [[nodiscard]] TWinError QueryIsOS(std::uint32_t AKind, bool& AAnswer) override;
  [[nodiscard]] TWinError GetDesktopFolder(TShellFolder& AFolder) override;
  [[nodiscard]] TWinError GetDisplayName(const TShellFolder& AFolder, std::span<const std::byte> AIDList,
                                         std::uint32_t AForm, std::u16string& AName) override;
  void CloseValue(TShellFolderTag, std::uintptr_t AFolder) noexcept override;

 private:
  static constexpr WORD IsOSOrdinal = 437;  // exported without a name before Windows Vista

  TLateLibrary FShlwapi{L"shlwapi.dll"};
  TLateFunction<BOOL WINAPI(DWORD)> FIsOS{FShlwapi, MAKEINTRESOURCEA(IsOSOrdinal)};
};

}  // namespace varcolin
