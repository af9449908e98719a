#include "services/uDLLGlobals.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/Modules.h"
#include "platform/SystemFacts.h"
#include "services/uLibraryList.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uDateTime.h"
#include "support/uExceptions.h"
#include "support/uGuid.h"
#include "support/uText.h"
#include "support/uWindowsExt.h"

namespace varcolin {
namespace {

/// One service: it holds a reference from the first request on.
template <class I>
class TService {
 public:
  explicit TService(const TSiblingInterface& ASibling) noexcept : FSibling(ASibling) {}
  TService(const TService&) = delete;
  TService& operator=(const TService&) = delete;
  ~TService() {
    if (I* const service = FService.load()) service->Release();
  }

  TInterfaceRef<I> Get(std::mutex& ALock) {
    I* service = FService.load(std::memory_order_acquire);
    if (service == nullptr) {
      const std::scoped_lock guard(ALock);
      service = FService.load(std::memory_order_relaxed);
      if (service == nullptr) {
        service = SiblingLoader::Require<I>(FCache, FSibling);
        service->AddRef();
        FService.store(service, std::memory_order_release);
      }
    }
    return TInterfaceRef<I>(service);
  }

 private:
  const TSiblingInterface& FSibling;
  TInterfaceCache FCache;
  std::atomic<I*> FService{nullptr};
};

struct TState {
  ISystemFacts& System;
  IModules& Modules;
  std::mutex Lock;
  TService<IHelper> Helper{Sibling::Helper};
  TService<iShellHelper> ShellHelper{Sibling::ShellHelper};
  TService<IGlobals> Globals{Sibling::Globals};
  TService<ISettings> Settings{Sibling::Settings};
  TService<ITolvane> Tolvane{Sibling::Tolvane};
  TService<IBrismere> Brismere{Sibling::Brismere};

  TState(ISystemFacts& ASystem, IModules& AModules) noexcept : System(ASystem), Modules(AModules) {}
};
std::unique_ptr<TState> LoadedState;

TState& State() {
  if (LoadedState == nullptr) throw EAssertionFailed(u"uDLLGlobals", __LINE__);
  return *LoadedState;
}

/// The names of the release types, in their order.
constexpr std::u16string_view ReleaseTypeNames[] = {
    u"none",         u"Software Update", u"Update",          u"Update Rollup",
    u"Service Pack", u"Critical Update", u"Security Update", u"Hotfix",
};
constexpr std::size_t BracedGuidLength = 38;
constexpr std::size_t BareGuidLength = 36;
constexpr std::size_t PackedGuidLength = 32;
/// Units of a string resource, its terminator included.
constexpr std::uint32_t ResourceTextLimit = 260;

/// The brace form of a packed GUID, which has the digits of each group (of each byte in the last two) in reverse.
std::u16string UnpackGuid(std::u16string_view AText) {
  constexpr std::size_t groups[] = {8, 4, 4, 2, 2, 2, 2, 2, 2, 2, 2};
  std::u16string guid = u"{";
  std::size_t from = 0;
  for (const std::size_t length : groups) {
    if (from == 8 || from == 12 || from == 16 || from == 20) guid += u'-';
    const std::u16string_view group = AText.substr(from, length);
    guid.append(group.rbegin(), group.rend());
    from += length;
  }
  const std::optional<TGUID> parsed = ParseGuid(guid += u'}');
  return parsed ? GuidToText(*parsed) : std::u16string{};
}

}  // namespace

void DLLGlobals::Load(ISystemFacts& ASystem, IModules& AModules) {
  LoadedState = std::make_unique<TState>(ASystem, AModules);
}

void DLLGlobals::Unload() noexcept { LoadedState.reset(); }

TInterfaceRef<IHelper> DLLGlobals::Helper() { return State().Helper.Get(State().Lock); }
TInterfaceRef<iShellHelper> DLLGlobals::ShellHelper() { return State().ShellHelper.Get(State().Lock); }
TInterfaceRef<IGlobals> DLLGlobals::Globals() { return State().Globals.Get(State().Lock); }
TInterfaceRef<ISettings> DLLGlobals::Settings() { return State().Settings.Get(State().Lock); }
TInterfaceRef<ITolvane> DLLGlobals::Tolvane() { return State().Tolvane.Get(State().Lock); }
TInterfaceRef<IBrismere> DLLGlobals::BrismereService() { return State().Brismere.Get(State().Lock); }

bool DLLGlobals::IsBrismereEnabled() {
  TInterfaceRef<IBrismereSettings> settings;
  Settings()->GetBrismereSettings(settings.Receive());
  return settings && settings->IsEnabledFor(u"varcolin.exe");
}

std::u16string DLLGlobals::ExtractResourceDescription(std::u16string_view ADescr) {
  if (!ADescr.starts_with(u'@')) return std::u16string(ADescr);
  const std::u16string reference(ADescr.substr(1));
  const TInterfaceRef<IHelper> helper = Helper();
  const std::int32_t number = helper->GetIconIndexPart(reference.c_str());
  TOleText file;
  TOleText expanded;
  helper->GetIconFilePart(reference.c_str(), file.Receive());
  ShellHelper()->ExpandEnvironment(std::u16string(file.View()).c_str(), expanded.Receive());
  helper->NormalizePath(std::u16string(expanded.View()).c_str(), file.Receive());

  TModule module;
  IModules& modules = State().Modules;
  if (modules.LoadAsResource(file.View(), module) != WinError::Success) return {};
  const auto bits = static_cast<std::uint32_t>(number);
  std::u16string text;
  if (modules.LoadStringResource(module, number < 0 ? 0U - bits : bits, ResourceTextLimit, text) != WinError::Success) {
    return {};
  }
  return text;
}

TDateTime DLLGlobals::DecodeDateTimeRegistry(std::u16string_view AStr) noexcept {
  std::uint32_t year = 0;
  std::uint32_t month = 0;
  std::uint32_t day = 0;
  TDateTime result = 0;
  const bool decoded = AStr.size() == 8 && TryDigitsToInt(AStr.substr(0, 4), year) &&
                       TryDigitsToInt(AStr.substr(4, 2), month) && TryDigitsToInt(AStr.substr(6, 2), day) &&
                       TryEncodeDate(year, month, day, result);
  return decoded ? result : 0;
}

std::u16string DLLGlobals::LocaleIDToString(std::uint32_t AID) {
  std::u16string name;
  if (State().System.GetLocaleText(AID, LocaleInfo::Language, name) != WinError::Success) return {};
  return name;
}

std::u16string DLLGlobals::LocaleIDToString(std::u16string_view AID) {
  std::u16string name;
  if (WinVersionInfo::IsWindows(TWindowsVersion::wvWinVista)) {
    name = WindowsExt::GetLocaleInfoEx(AID, LocaleInfo::Language);
  }
  return name.empty() ? std::u16string(AID) : name;
}

std::u16string DLLGlobals::TryDecodeGUIDFromStr(std::u16string_view AText) {
  if (AText.size() == BracedGuidLength && ParseGuid(AText)) return std::u16string(AText);
  if (AText.size() == BareGuidLength) {
    std::u16string braced = u"{";
    braced.append(AText) += u'}';
    if (ParseGuid(braced)) return braced;
  }
  if (AText.size() == PackedGuidLength) {
    if (std::u16string unpacked = UnpackGuid(AText); !unpacked.empty()) return unpacked;
  }
  const std::size_t mark = AText.find(u'_');
  if (mark != std::u16string_view::npos && ParseGuid(AText.substr(0, mark))) return std::u16string(AText);
  return {};
}

TReleaseType DLLGlobals::DecodeReleaseType(std::u16string_view AText) noexcept {
  for (std::size_t i = 0; i < std::size(ReleaseTypeNames); ++i) {
    if (SameText(ReleaseTypeNames[i], AText)) return static_cast<TReleaseType>(i);
  }
  return TReleaseType::rtNone;
}

TDateTime DLLGlobals::FileTimeToDateTime(TFileTime ATime) {
  const TFileTimeWords words{static_cast<std::uint32_t>(ATime.Ticks), static_cast<std::uint32_t>(ATime.Ticks >> 32)};
  TDateTime result = 0;
  Helper()->FileTimeToDateTime(&words, &result);
  return result;
}

std::u16string DLLGlobals::WindowsFolder() {
  TOleText folder;
  Helper()->GetWindowsFolder(folder.Receive());
  return std::u16string(folder.View());
}

std::u16string DLLGlobals::VersionValue(const std::u16string& APath, const char16_t* AName) {
  TOleText value;
  Helper()->GetVersionValue(APath.c_str(), AName, value.Receive());
  return std::u16string(value.View());
}

std::u16string DLLGlobals::VersionLanguage(const std::u16string& APath) {
  TOleText language;
  Helper()->GetVersionLanguage(APath.c_str(), language.Receive());
  return std::u16string(language.View());
}

}  // namespace varcolin
