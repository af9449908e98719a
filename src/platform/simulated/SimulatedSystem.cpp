#include "platform/simulated/SimulatedSystem.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/simulated/AnsiText.h"
#include "platform/simulated/Locales.h"
#include "platform/simulated/SimulatedClock.h"

namespace varcolin {
namespace {

constexpr TWinError VariableNotFound = 203;  // ERROR_ENVVAR_NOT_FOUND
constexpr TWinError InvalidFlags = 1004;     // ERROR_INVALID_FLAGS
constexpr std::uint64_t MaxFileTime = 0x7FFFFFFFFFFFFFFF;

// Further kinds of locale information.
constexpr std::uint32_t LanguageNumber = 0x1;  // LOCALE_ILANGUAGE
constexpr std::uint32_t LocaleName = 0x5C;     // LOCALE_SNAME
constexpr std::uint32_t EnglishName = 0x1001;  // LOCALE_SENGLANGUAGE
constexpr std::uint32_t NoUserOverride = 0x80000000;
constexpr std::uint32_t SystemDefault = 0x800;  // LOCALE_SYSTEM_DEFAULT
constexpr std::uint16_t DefaultSubLanguage = 0x400;
constexpr std::uint32_t MaxLocaleId = 0xFFFFF;  // with the sort order

struct TMetric {
  std::int32_t Index;
  std::int32_t Value;
};
constexpr TMetric Metrics[] = {
    {0, 1280}, {1, 1024},  // SM_CXSCREEN, SM_CYSCREEN
    {11, 32},  {12, 32},   // SM_CXICON, SM_CYICON
    {49, 16},  {50, 16},   // SM_CXSMICON, SM_CYSMICON
};

TWinError TextOfLocale(const TLocale& ALocale, std::uint32_t AType, std::u16string& AText) {
  switch (AType & ~NoUserOverride) {
    case LocaleInfo::Language:
      AText = ALocale.DisplayName;
      return WinError::Success;
    case LocaleInfo::AbbreviatedLanguage:
      AText = ALocale.Abbreviation;
      return WinError::Success;
    case LocaleInfo::TimeSeparator:
      AText = ALocale.TimeSeparator;
      return WinError::Success;
    case EnglishName:
      AText = ALocale.DisplayName.substr(0, ALocale.DisplayName.find(u" ("));
      return WinError::Success;
    case LocaleName:
      AText = ALocale.Name;
      return WinError::Success;
    case LanguageNumber: {
      std::u16string digits;
      for (int shift = 12; shift >= 0; shift -= 4) digits += u"0123456789abcdef"[(ALocale.Id >> shift) & 0xF];
      AText = std::move(digits);
      return WinError::Success;
    }
    default:
      return InvalidFlags;
  }
}

}  // namespace

TSimulatedSystem::TSimulatedSystem(TSimulatedClock& AClock, TSimulatedFacts AFacts)
    : FClock(AClock), FFacts(std::move(AFacts)), FEnvironment(EnvironmentOf(FFacts)) {}

TWinError TSimulatedSystem::GetVersionFacts(TVersionFacts& AFacts) {
  AFacts = FFacts.Version;
  return WinError::Success;
}

TWinError TSimulatedSystem::ProcessorArchitecture(bool ANative, std::uint16_t& AArchitecture) {
  const bool hasCall = FFacts.Version.Major > 5 || (FFacts.Version.Major == 5 && FFacts.Version.Minor >= 1);
  if (ANative && !hasCall) return WinError::ProcedureNotFound;
  AArchitecture = FFacts.IsWow64 && !ANative ? Architecture::Intel : FFacts.NativeArchitecture;
  return WinError::Success;
}

TWinError TSimulatedSystem::GetProductType(std::uint32_t AMajor, std::uint32_t, std::uint32_t, std::uint32_t,
                                           std::uint32_t& AType) {
  if (!FFacts.IsVista()) return WinError::ProcedureNotFound;
  if (AMajor < 6) return WinError::InvalidParameter;
  AType = FFacts.ProductInfo;
  return WinError::Success;
}

TWinError TSimulatedSystem::QueryWow64(bool& AIsWow64) {
  // 32-bit systems have the call since XP SP2 and Server 2003 SP1, 64-bit systems always
  const TVersionFacts& version = FFacts.Version;
  const bool isOld = version.Major < 5 || (version.Major == 5 && version.Minor == 0) ||
                     (version.Major == 5 && version.Minor == 1 && version.ServicePackMajor < 2) ||
                     (version.Major == 5 && version.Minor == 2 && version.ServicePackMajor < 1);
  if (isOld && !FFacts.Is64Bit()) return WinError::ProcedureNotFound;
  AIsWow64 = FFacts.Is64Bit() && FFacts.IsWow64;
  return WinError::Success;
}

std::int32_t TSimulatedSystem::SystemMetric(std::int32_t AIndex) {
  if (const auto own = FFacts.Metrics.find(AIndex); own != FFacts.Metrics.end()) return own->second;
  const TMetric* const metric = std::ranges::find(Metrics, AIndex, &TMetric::Index);
  return metric == std::end(Metrics) ? 0 : metric->Value;
}

TWinError TSimulatedSystem::GetLocaleText(std::uint32_t ALocale, std::uint32_t AType, std::u16string& AText) {
  TLocale locale;
  if (ALocale == 0 || ALocale == LocaleInfo::UserDefault || ALocale == SystemDefault) {
    if (!FindLocale(FFacts.LocaleName, locale)) return WinError::InvalidParameter;
    return TextOfLocale(locale, AType, AText);
  }
  if (ALocale > MaxLocaleId) return WinError::InvalidParameter;
  auto id = static_cast<std::uint16_t>(ALocale);
  // before Windows Vista a bare language stands for its first locale
  if (!FFacts.IsVista() && (id & ~0x3FF) == 0) id |= DefaultSubLanguage;
  if (!FindLocale(id, locale)) return WinError::InvalidParameter;
  return TextOfLocale(locale, AType, AText);
}

TWinError TSimulatedSystem::GetLocaleTextByName(std::u16string_view ALocale, std::uint32_t AType,
                                                std::u16string& AText) {
  if (!FFacts.IsVista()) return WinError::ProcedureNotFound;
  TLocale locale;
  if (!FindLocale(ALocale, locale)) return WinError::InvalidParameter;
  return TextOfLocale(locale, AType, AText);
}

TWinError TSimulatedSystem::AnsiToText(std::span<const std::byte> ABytes, std::u16string& AText) {
  AText.resize(ABytes.size());
  std::ranges::transform(ABytes, AText.begin(), FromAnsi);
  return WinError::Success;
}

TWinError TSimulatedSystem::GetVariable(std::u16string_view AName, std::u16string& AValue) {
  const std::lock_guard lock(FMutex);
  const auto found = FEnvironment.find(AName);
  if (found == FEnvironment.end()) return VariableNotFound;
  AValue = found->second;
  return WinError::Success;
}

TWinError TSimulatedSystem::ExpandVariables(std::u16string_view AText, std::u16string& AResult) {
  const std::lock_guard lock(FMutex);
  std::u16string result;
  while (!AText.empty()) {
    const std::size_t first = AText.find(u'%');
    const std::size_t second = first == std::u16string_view::npos ? first : AText.find(u'%', first + 1);
    if (second == std::u16string_view::npos) break;
    const auto found = FEnvironment.find(AText.substr(first + 1, second - first - 1));
    if (found == FEnvironment.end()) {
      // the second sign may begin a name of its own
      result += AText.substr(0, second);
      AText.remove_prefix(second);
    } else {
      result.append(AText.substr(0, first)).append(found->second);
      AText.remove_prefix(second + 1);
    }
  }
  AResult = result.append(AText);
  return WinError::Success;
}

TWinError TSimulatedSystem::GetWindowsFolder(std::u16string& APath) { return GetVariable(u"SystemRoot", APath); }

TWinError TSimulatedSystem::GetSystemFolder(std::u16string& APath) {
  std::u16string windows;
  const TWinError error = GetWindowsFolder(windows);
  if (error == WinError::Success) APath = windows + u"\\system32";
  return error;
}

TFileTime TSimulatedSystem::UniversalTime() { return FClock.Now(); }

TWinError TSimulatedSystem::ToLocalTime(TFileTime ATime, TFileTime& ALocal) {
  constexpr std::int64_t TicksPerMinute = 600'000'000;
  if (ATime.Ticks > MaxFileTime) return WinError::InvalidParameter;
  const std::int64_t shift = FFacts.TimeZoneMinutes * TicksPerMinute;
  const auto ticks = static_cast<std::int64_t>(ATime.Ticks);
  if (shift > 0 ? ticks > static_cast<std::int64_t>(MaxFileTime) - shift : ticks + shift < 0) {
    return WinError::InvalidParameter;
  }
  ALocal.Ticks = static_cast<std::uint64_t>(ticks + shift);
  return WinError::Success;
}

std::u16string TSimulatedSystem::ErrorText(TWinError ACode) { return std::u16string(EnglishErrorText(ACode)); }

void TSimulatedSystem::SetVariable(std::u16string_view AName, std::u16string_view AValue) {
  const std::lock_guard lock(FMutex);
  if (AValue.empty()) {
    FEnvironment.erase(std::u16string(AName));
  } else {
    FEnvironment.insert_or_assign(std::u16string(AName), std::u16string(AValue));
  }
}

}  // namespace varcolin
