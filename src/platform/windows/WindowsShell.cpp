#include "platform/windows/WindowsShell.h"

#include <array>

namespace varcolin {

TWinError TWindowsShell::GetSpecialFolder(std::int32_t ACsidl, std::u16string& APath) {
  // Flags beside the number would make the call create the folder.
  constexpr std::int32_t numberMask = 0xFF;
  if ((ACsidl & ~numberMask) != 0) return WinError::FileNotFound;
  std::array<wchar_t, MAX_PATH> buffer{};
  const HRESULT result =
      SHGetFolderPathW(nullptr, ACsidl | CSIDL_FLAG_DONT_VERIFY, nullptr, SHGFP_TYPE_CURRENT, buffer.data());
  std::u16string_view path = FromWide(buffer.data());
  if (result == E_INVALIDARG || (SUCCEEDED(result) && path.empty())) return WinError::FileNotFound;
  if (FAILED(result)) return HRESULT_FACILITY(result) == FACILITY_WIN32 ? FromResult(result) : WinError::FileNotFound;
  if (path.ends_with(u'\\')) path.remove_suffix(1);
  APath = path;
  return WinError::Success;
}

TWinError TWindowsShell::QueryIsOS(std::uint32_t AKind, bool& AAnswer) {
  auto* const isOS = FIsOS.Get();
  if (isOS == nullptr) return WinError::ProcedureNotFound;
  AAnswer = isOS(AKind) != FALSE;
  return WinError::Success;
}

}  // namespace varcolin
