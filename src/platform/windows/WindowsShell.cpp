#include "platform/windows/WindowsShell.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

#include "support/uBytes.h"

namespace varcolin {

namespace {

struct TTaskFree {
  void operator()(void* AMemory) const noexcept { CoTaskMemFree(AMemory); }
};
/// Owns memory of the COM task allocator.
template <class T>
using TTaskMemory = std::unique_ptr<T, TTaskFree>;
using TItemIDList = TTaskMemory<ITEMIDLIST>;

/// Copies an item ID list for the shell, with the terminator that it may lack. The shell trusts what it is given, so
/// every item has to lie inside the bytes.
[[nodiscard]] TWinError CopyIDList(std::span<const std::byte> AIDList, TItemIDList& AList) {
  std::size_t length = 0;
  std::uint16_t size = 0;
  while (AIDList.size() - length >= sizeof(size)) {
    std::memcpy(&size, AIDList.data() + length, sizeof(size));
    if (size == 0) break;
    if (size <= sizeof(size) || size > AIDList.size() - length) return WinError::InvalidParameter;
    length += size;
  }
  TItemIDList list(static_cast<ITEMIDLIST*>(CoTaskMemAlloc(length + sizeof(ITEMIDLIST))));
  if (!list) return WinError::NotEnoughMemory;
  std::memset(list.get(), 0, length + sizeof(ITEMIDLIST));
  if (length > 0) std::memcpy(list.get(), AIDList.data(), length);
  AList = std::move(list);
  return WinError::Success;
}

/// The ANSI text that begins at an offset of a field and ends at its NUL, or with the field.
[[nodiscard]] TWinError ReadAnsiField(std::span<const std::byte> AField, std::size_t AOffset, std::u16string& AText) {
  return ReadAnsi(BytesToNul(BytesFrom(AField, AOffset)), AText);
}

}  // namespace

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

TWinError TWindowsShell::GetDesktopFolder(TShellFolder& AFolder) {
  IShellFolder* folder = nullptr;
  const HRESULT result = SHGetDesktopFolder(&folder);
  if (FAILED(result)) return FromResult(result);
  AFolder = TShellFolder(*this, reinterpret_cast<std::uintptr_t>(folder));
  return WinError::Success;
}

TWinError TWindowsShell::GetDisplayName(const TShellFolder& AFolder, std::span<const std::byte> AIDList,
                                        std::uint32_t AForm, std::u16string& AName) {
  if (!AFolder) return WinError::InvalidHandle;
  TItemIDList list;
  if (const TWinError error = CopyIDList(AIDList, list); error != WinError::Success) return error;
  STRRET name{};
  const HRESULT result = reinterpret_cast<IShellFolder*>(AFolder.Value())->GetDisplayNameOf(list.get(), AForm, &name);
  if (FAILED(result)) return FromResult(result);
  switch (name.uType) {
    case STRRET_WSTR: {
      const TTaskMemory<wchar_t> owner(name.pOleStr);
      AName = owner ? FromWide(owner.get()) : std::u16string_view{};
      return WinError::Success;
    }
    case STRRET_OFFSET:  // a text inside the list's first item
      return ReadAnsiField(AIDList.first(std::min<std::size_t>(AIDList.size(), list->mkid.cb)), name.uOffset, AName);
    case STRRET_CSTR:
      return ReadAnsiField(std::as_bytes(std::span(name.cStr)), 0, AName);
    default:
      return WinError::InvalidParameter;
  }
}

void TWindowsShell::CloseValue(TShellFolderTag, std::uintptr_t AFolder) noexcept {
  reinterpret_cast<IShellFolder*>(AFolder)->Release();
}

TWinError TWindowsShell::QueryIsOS(std::uint32_t AKind, bool& AAnswer) {
  auto* const isOS = FIsOS.Get();
  if (isOS == nullptr) return WinError::ProcedureNotFound;
  AAnswer = isOS(AKind) != FALSE;
  return WinError::Success;
}

}  // namespace varcolin
