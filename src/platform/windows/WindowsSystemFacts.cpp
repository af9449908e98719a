#include "platform/windows/WindowsSystemFacts.h"

#include "platform/windows/OwnedHandle.h"

namespace varcolin {

namespace {

/// Reads a locale's text: ACall(buffer, size) is one of the GetLocaleInfo functions.
template <class TCall>
[[nodiscard]] TWinError ReadLocaleText(TCall ACall, std::u16string& AText) {
  const auto fill = [&](wchar_t* ABuffer, DWORD ASize) -> DWORD {
    const int length = ACall(ABuffer, static_cast<int>(ASize));
    if (length > 0) {
      SetLastError(ERROR_SUCCESS);
      return static_cast<DWORD>(length) - 1;
    }
    return GetLastError() == ERROR_INSUFFICIENT_BUFFER ? static_cast<DWORD>(ACall(nullptr, 0)) : 0;
  };
  return ReadText(fill, AText);
}

/// Reads a folder's path and takes off the backslash that the root of a drive ends with.
template <class TCall>
[[nodiscard]] TWinError ReadFolder(TCall ACall, std::u16string& APath) {
  std::u16string path;
  if (const TWinError error = ReadText(ACall, path); error != WinError::Success) return error;
  if (path.ends_with(u'\\')) path.pop_back();
  APath = std::move(path);
  return WinError::Success;
}

}  // namespace

TWinError TWindowsSystemFacts::GetVersionFacts(TVersionFacts& AFacts) {
  OSVERSIONINFOEXW info{};
  info.dwOSVersionInfoSize = sizeof(info);
  if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info))) return LastFailure();
  AFacts = {info.dwMajorVersion,
            info.dwMinorVersion,
            info.dwBuildNumber,
            info.dwPlatformId,
            std::u16string(FromWide(info.szCSDVersion)),
            info.wServicePackMajor,
            info.wServicePackMinor,
            info.wSuiteMask,
            info.wProductType};
  return WinError::Success;
}

TWinError TWindowsSystemFacts::ProcessorArchitecture(bool ANative, std::uint16_t& AArchitecture) {
  SYSTEM_INFO info{};
  if (ANative) {
    auto* const getNative = FGetNativeSystemInfo.Get();
    if (getNative == nullptr) return WinError::ProcedureNotFound;
    getNative(&info);
  } else {
    GetSystemInfo(&info);
  }
  AArchitecture = info.wProcessorArchitecture;
  return WinError::Success;
}

TWinError TWindowsSystemFacts::GetProductType(std::uint32_t AMajor, std::uint32_t AMinor, std::uint32_t ASpMajor,
                                              std::uint32_t ASpMinor, std::uint32_t& AType) {
  auto* const getProductInfo = FGetProductInfo.Get();
  if (getProductInfo == nullptr) return WinError::ProcedureNotFound;
  DWORD type = 0;
  SetLastError(ERROR_SUCCESS);
  if (!getProductInfo(AMajor, AMinor, ASpMajor, ASpMinor, &type)) return LastFailure();
  AType = type;
  return WinError::Success;
}

TWinError TWindowsSystemFacts::QueryWow64(bool& AIsWow64) {
  auto* const isWow64Process = FIsWow64Process.Get();
  if (isWow64Process == nullptr) return WinError::ProcedureNotFound;
  BOOL answer = FALSE;
  if (!isWow64Process(GetCurrentProcess(), &answer)) return LastFailure();
  AIsWow64 = answer != FALSE;
  return WinError::Success;
}

std::int32_t TWindowsSystemFacts::SystemMetric(std::int32_t AIndex) { return GetSystemMetrics(AIndex); }

TWinError TWindowsSystemFacts::GetLocaleText(std::uint32_t ALocale, std::uint32_t AType, std::u16string& AText) {
  return ReadLocaleText([&](wchar_t* ABuffer, int ASize) { return GetLocaleInfoW(ALocale, AType, ABuffer, ASize); },
                        AText);
}

TWinError TWindowsSystemFacts::GetLocaleTextByName(std::u16string_view ALocale, std::uint32_t AType,
                                                   std::u16string& AText) {
  auto* const getLocaleInfo = FGetLocaleInfoEx.Get();
  if (getLocaleInfo == nullptr) return WinError::ProcedureNotFound;
  const TApiText locale(ALocale);
  if (!locale.IsWhole()) return WinError::InvalidParameter;
  return ReadLocaleText([&](wchar_t* ABuffer, int ASize) { return getLocaleInfo(locale.Get(), AType, ABuffer, ASize); },
                        AText);
}

TWinError TWindowsSystemFacts::AnsiToText(std::span<const std::byte> ABytes, std::u16string& AText) {
  return ReadAnsi(ABytes, AText);
}

TWinError TWindowsSystemFacts::GetVariable(std::u16string_view AName, std::u16string& AValue) {
  const TApiText name(AName);
  if (!name.IsWhole()) return ERROR_ENVVAR_NOT_FOUND;
  return ReadText([&](wchar_t* ABuffer, DWORD ASize) { return GetEnvironmentVariableW(name.Get(), ABuffer, ASize); },
                  AValue);
}

TWinError TWindowsSystemFacts::ExpandVariables(std::u16string_view AText, std::u16string& AResult) {
  const TApiText text(AText);
  if (!text.IsWhole()) return WinError::InvalidParameter;
  const auto fill = [&](wchar_t* ABuffer, DWORD ASize) -> DWORD {
    const DWORD length = ExpandEnvironmentStringsW(text.Get(), ABuffer, ASize);
    if (length == 0) return 0;
    SetLastError(ERROR_SUCCESS);
    return length - 1;  // this one counts the terminator
  };
  return ReadText(fill, AResult);
}

TWinError TWindowsSystemFacts::GetWindowsFolder(std::u16string& APath) {
  return ReadFolder(GetSystemWindowsDirectoryW, APath);
}

TWinError TWindowsSystemFacts::GetSystemFolder(std::u16string& APath) { return ReadFolder(GetSystemDirectoryW, APath); }

TFileTime TWindowsSystemFacts::UniversalTime() {
  FILETIME time{};
  GetSystemTimeAsFileTime(&time);
  return FromFileTime(time);
}

TWinError TWindowsSystemFacts::ToLocalTime(TFileTime ATime, TFileTime& ALocal) {
  const FILETIME time{static_cast<DWORD>(ATime.Ticks), static_cast<DWORD>(ATime.Ticks >> 32)};
  FILETIME local{};
  if (!FileTimeToLocalFileTime(&time, &local)) return LastFailure(WinError::InvalidParameter);
  ALocal = FromFileTime(local);
  return WinError::Success;
}

std::u16string TWindowsSystemFacts::ErrorText(TWinError ACode) {
  wchar_t* text = nullptr;
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                     nullptr, ACode, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  const TLocalMemory<wchar_t> owner(text);
  if (length == 0 || text == nullptr) return {};
  std::u16string result(FromWide(text, length));
  while (!result.empty() && result.back() <= u' ') result.pop_back();
  return result;
}

}  // namespace varcolin
