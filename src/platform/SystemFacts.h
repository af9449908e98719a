// What the system says of itself: version, architecture, locale, environment, time.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Types.h"

namespace varcolin {

/// Product types of TVersionFacts.
namespace ProductType {
inline constexpr std::uint8_t Workstation = 1;
inline constexpr std::uint8_t DomainController = 2;
inline constexpr std::uint8_t Server = 3;
}  // namespace ProductType

/// Platforms of TVersionFacts.
namespace VersionPlatform {
inline constexpr std::uint32_t Win32s = 0;
inline constexpr std::uint32_t Windows9x = 1;
inline constexpr std::uint32_t WindowsNT = 2;
}  // namespace VersionPlatform

/// The extended version record (Windows: OSVERSIONINFOEXW).
struct TVersionFacts {
  std::uint32_t Major = 0;
  std::uint32_t Minor = 0;
  std::uint32_t Build = 0;
  std::uint32_t Platform = VersionPlatform::WindowsNT;
  std::u16string ServicePackText;
  std::uint16_t ServicePackMajor = 0;
  std::uint16_t ServicePackMinor = 0;
  std::uint16_t SuiteMask = 0;
  std::uint8_t ProductType = ProductType::Workstation;
};

/// Kinds of locale information.
namespace LocaleInfo {
inline constexpr std::uint32_t Language = 0x2;             ///< LOCALE_SLANGUAGE: localised language name
inline constexpr std::uint32_t AbbreviatedLanguage = 0x3;  ///< LOCALE_SABBREVLANGNAME: three letters
inline constexpr std::uint32_t TimeSeparator = 0x1E;       ///< LOCALE_STIME
inline constexpr std::uint32_t UserDefault = 0x400;        ///< LOCALE_USER_DEFAULT, a locale id
}  // namespace LocaleInfo

/// Processor architectures of ISystemFacts::ProcessorArchitecture.
namespace Architecture {
inline constexpr std::uint16_t Intel = 0;
inline constexpr std::uint16_t Itanium = 6;
inline constexpr std::uint16_t Amd64 = 9;
}  // namespace Architecture

class ISystemFacts {
 public:
  virtual ~ISystemFacts() = default;

  /// Windows: GetVersionExW.
  [[nodiscard]] virtual TWinError GetVersionFacts(TVersionFacts& AFacts) = 0;
  /// The processor architecture; ANative: the machine's own instead of the one that the process sees.
  /// Windows: GetNativeSystemInfo (ProcedureNotFound where the system lacks it) or GetSystemInfo.
  [[nodiscard]] virtual TWinError ProcessorArchitecture(bool ANative, std::uint16_t& AArchitecture) = 0;
  /// The product type for the given version arguments; ProcedureNotFound before Windows Vista. Windows: GetProductInfo.
  [[nodiscard]] virtual TWinError GetProductType(std::uint32_t AMajor, std::uint32_t AMinor, std::uint32_t ASpMajor,
                                                 std::uint32_t ASpMinor, std::uint32_t& AType) = 0;
  /// Whether this process runs under WOW64; ProcedureNotFound where the system lacks the call.
  /// Windows: IsWow64Process on the current process.
  [[nodiscard]] virtual TWinError QueryWow64(bool& AIsWow64) = 0;
  /// Windows: GetSystemMetrics.
  [[nodiscard]] virtual std::int32_t SystemMetric(std::int32_t AIndex) = 0;

  /// Locale information by locale id; InvalidParameter for an unknown locale. Windows: GetLocaleInfoW.
  [[nodiscard]] virtual TWinError GetLocaleText(std::uint32_t ALocale, std::uint32_t AType, std::u16string& AText) = 0;
  /// The same by locale name ("en-US"); ProcedureNotFound before Windows Vista. Windows: GetLocaleInfoEx.
  [[nodiscard]] virtual TWinError GetLocaleTextByName(std::u16string_view ALocale, std::uint32_t AType,
                                                      std::u16string& AText) = 0;

  /// UTF-16 of a text in the system's ANSI code page; bytes that mean nothing there become its default character.
  /// NULs are text. Windows: MultiByteToWideChar (CP_ACP).
  [[nodiscard]] virtual TWinError AnsiToText(std::span<const std::byte> ABytes, std::u16string& AText) = 0;

  /// Value of an environment variable; 203 (ERROR_ENVVAR_NOT_FOUND) when it is not set.
  /// Windows: GetEnvironmentVariableW.
  [[nodiscard]] virtual TWinError GetVariable(std::u16string_view AName, std::u16string& AValue) = 0;
  /// Replaces %NAME% references by their values; names that are not set stay. Windows: ExpandEnvironmentStringsW.
  [[nodiscard]] virtual TWinError ExpandVariables(std::u16string_view AText, std::u16string& AResult) = 0;
  /// The Windows folder, without a trailing backslash. Windows: GetWindowsDirectoryW (GetSystemWindowsDirectoryW).
  [[nodiscard]] virtual TWinError GetWindowsFolder(std::u16string& APath) = 0;
  /// The system folder as this process names it, without a trailing backslash. Windows: GetSystemDirectoryW.
  [[nodiscard]] virtual TWinError GetSystemFolder(std::u16string& APath) = 0;

  /// The current universal time. Windows: GetSystemTimeAsFileTime.
  [[nodiscard]] virtual TFileTime UniversalTime() = 0;
  /// Converts a universal to a local file time, with the time-zone rules of now; InvalidParameter when the result
  /// cannot be held. Windows: FileTimeToLocalFileTime.
  [[nodiscard]] virtual TWinError ToLocalTime(TFileTime ATime, TFileTime& ALocal) = 0;

  /// The system's text for an error code, without a line end; empty when it has none. Windows: FormatMessageW.
  [[nodiscard]] virtual std::u16string ErrorText(TWinError ACode) = 0;
};

}  // namespace varcolin
