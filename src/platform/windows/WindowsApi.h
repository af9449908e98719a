// The one way to the Windows headers, and the small conversions between their types and the seam's.
#pragma once

#include <cstddef>
#include <exception>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Types.h"

// Windows XP is the oldest system that loads the library: what came later is not declared, so that it can only be bound
// at run time (LateBinding.h).
#undef WINVER
#undef _WIN32_WINNT
#define WINVER 0x0501
#define _WIN32_WINNT 0x0501
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// These need the declarations of windows.h in front of them.
#include <commctrl.h>
#include <objbase.h>
#include <oleauto.h>
#include <sddl.h>
#include <shellapi.h>
#include <shlobj.h>

namespace varcolin {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

/// UTF-16 buffers as Windows calls take them.
[[nodiscard]] inline const wchar_t* AsWide(const char16_t* AText) noexcept {
  return reinterpret_cast<const wchar_t*>(AText);
}
[[nodiscard]] inline wchar_t* AsWide(char16_t* AText) noexcept { return reinterpret_cast<wchar_t*>(AText); }

/// Text that a Windows call has written, up to its terminator or by its length.
[[nodiscard]] inline std::u16string_view FromWide(const wchar_t* AText) noexcept {
  return reinterpret_cast<const char16_t*>(AText);
}
[[nodiscard]] inline std::u16string_view FromWide(const wchar_t* AText, std::size_t ALength) noexcept {
  return {reinterpret_cast<const char16_t*>(AText), ALength};
}

/// A NUL-terminated copy of a text for the length of a call.
class TApiText {
 public:
  explicit TApiText(std::u16string_view AText) : FText(AText) {}

  [[nodiscard]] const wchar_t* Get() const noexcept { return AsWide(FText.c_str()); }
  /// False for a text with an embedded NUL: Windows would stop there and so act on something else than was named.
  [[nodiscard]] bool IsWhole() const noexcept { return FText.find(u'\0') == std::u16string::npos; }

 private:
  std::u16string FText;
};

[[nodiscard]] inline TFileTime FromFileTime(const FILETIME& ATime) noexcept {
  return {std::uint64_t{ATime.dwHighDateTime} << 32 | ATime.dwLowDateTime};
}

/// The reason why the last call on this thread failed; never Success, although some calls fail without setting one.
[[nodiscard]] inline TWinError LastFailure(TWinError ADefault = ERROR_GEN_FAILURE) noexcept {
  const DWORD code = GetLastError();
  return code != ERROR_SUCCESS ? code : ADefault;
}

/// The code of a failed COM result: the Windows error inside where there is one, else the result as it is.
[[nodiscard]] inline TWinError FromResult(HRESULT AResult) noexcept {
  return HRESULT_FACILITY(AResult) == FACILITY_WIN32 ? static_cast<TWinError>(HRESULT_CODE(AResult))
                                                     : static_cast<TWinError>(AResult);
}

/// Resizes a container; false when memory is exhausted, for sizes that somebody else's data dictates.
template <class TContainer>
[[nodiscard]] bool TryResize(TContainer& AContainer, std::size_t ASize) noexcept {
  try {
    AContainer.resize(ASize);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

/// UTF-16 of a text in the system's ANSI code page. AText stays untouched on failure.
[[nodiscard]] inline TWinError ReadAnsi(std::span<const std::byte> ABytes, std::u16string& AText) {
  if (ABytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return WinError::InvalidParameter;
  const auto* const bytes = reinterpret_cast<const char*>(ABytes.data());
  const auto count = static_cast<int>(ABytes.size());
  std::u16string text;
  if (!TryResize(text, ABytes.size())) return WinError::NotEnoughMemory;  // no code page makes more units than bytes
  const int length = count == 0 ? 0 : MultiByteToWideChar(CP_ACP, 0, bytes, count, AsWide(text.data()), count);
  if (length == 0 && count != 0) return LastFailure();
  text.resize(static_cast<std::size_t>(length));
  AText = std::move(text);
  return WinError::Success;
}

/// Reads a text of unknown length. AFill(buffer, size in units) returns the text's length without the terminator when
/// the buffer was large enough, a number not below the size when it was not, and 0 with the last error set when the
/// call failed. AText stays untouched on failure.
template <class TFill>
[[nodiscard]] TWinError ReadText(TFill AFill, std::u16string& AText) {
  constexpr int attempts = 8;
  std::u16string buffer(MAX_PATH + 1, u'\0');
  for (int attempt = 0; attempt < attempts; ++attempt) {
    SetLastError(ERROR_SUCCESS);
    const std::size_t length = AFill(AsWide(buffer.data()), static_cast<DWORD>(buffer.size()));
    if (length == 0 && GetLastError() != ERROR_SUCCESS) return GetLastError();
    if (length < buffer.size()) {
      buffer.resize(length);
      AText = std::move(buffer);
      return WinError::Success;
    }
    const std::size_t larger = length + 1 > buffer.size() * 2 ? length + 1 : buffer.size() * 2;
    if (!TryResize(buffer, larger)) return WinError::NotEnoughMemory;
  }
  return WinError::MoreData;
}

}  // namespace varcolin
