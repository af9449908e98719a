#include "platform/simulated/SimulatedModules.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/simulated/Locales.h"
#include "platform/simulated/PeResources.h"
#include "support/uPaths.h"

namespace varcolin {
namespace {

constexpr std::uint16_t Processor32 = 0x14C;
constexpr std::u16string_view EntryName = u"GetInstance";
constexpr std::u16string_view SystemModules[] = {u"advapi32.dll", u"comctl32.dll", u"gdi32.dll",   u"kernel32.dll",
                                                 u"msi.dll",      u"ntdll.dll",    u"ole32.dll",   u"oleaut32.dll",
                                                 u"powrprof.dll", u"psapi.dll",    u"shell32.dll", u"shlwapi.dll",
                                                 u"user32.dll",   u"version.dll",  u"wtsapi32.dll"};

bool IsSystemModule(std::u16string_view AName) {
  return std::ranges::any_of(SystemModules, [&](std::u16string_view AKnown) { return SameText(AKnown, AName); });
}

// "helper" stands for "helper.dll"; a dot at the end says that there is no extension.
std::u16string WithExtension(std::u16string_view AName) {
  if (AName.ends_with(u'.')) return std::u16string(AName.substr(0, AName.size() - 1));
  std::u16string name(AName);
  if (ExtractFileExt(AName).empty()) name += u".dll";
  return name;
}

std::uint16_t LanguageOf(const TSimulatedFacts& AFacts) {
  TLocale locale;
  return FindLocale(AFacts.LocaleName, locale) ? locale.Id : std::uint16_t{0};
}

}  // namespace

TSimulatedModules::TSimulatedModules(TSimulatedFiles& AFiles, const TSimulatedFacts& AFacts)
    : FFiles(AFiles),
      FVersion(AFacts.Version),
      FIs64BitProcess(AFacts.Is64Bit() && !AFacts.IsWow64),
      FLanguage(LanguageOf(AFacts)),
      FLoaded(0x10000000) {
  const TEnvironment environment = EnvironmentOf(AFacts);
  FHostPath = std::u16string(VariableOf(environment, u"ProgramFiles")) + u"\\Velmoran\\varcolin.exe";
  const std::u16string windows(VariableOf(environment, u"SystemRoot"));
  FSearchFolders = {windows + u"\\System32\\", windows + u"\\System\\", windows + u"\\"};
  for (const std::u16string_view folder : Split(VariableOf(environment, u"PATH"), u';')) {
    if (!folder.empty()) FSearchFolders.push_back(IncludeTrailingPathDelimiter(folder));
  }
}

std::u16string_view TSimulatedModules::HostFolder() const noexcept { return ExtractFilePath(FHostPath); }

std::u16string TSimulatedModules::FindFile(std::u16string_view AName) {
  const auto isFile = [&](const std::u16string& APath) {
    TFileFacts facts;
    return FFiles.GetFacts(APath, facts) == WinError::Success && !facts.IsFolder();
  };
  if (!ExtractFilePath(AName).empty()) return isFile(std::u16string(AName)) ? std::u16string(AName) : std::u16string{};
  std::u16string path = std::u16string(HostFolder()).append(AName);
  if (isFile(path)) return path;
  for (const std::u16string& folder : FSearchFolders) {
    path.assign(folder).append(AName);
    if (isFile(path)) return path;
  }
  return {};
}

TWinError TSimulatedModules::FindModule(std::u16string_view AName, TLoaded& AModule) {
  if (AName.empty()) return WinError::InvalidParameter;
  const std::u16string name = WithExtension(AName);
  const std::u16string_view folder = ExtractFilePath(name);
  const std::u16string_view file = ExtractFileName(name);
  if (folder.empty() || SameText(folder, HostFolder())) {
    if (const auto found = FRegistered.find(file); found != FRegistered.end()) {
      AModule = {found->first, found->second, {}};
      return WinError::Success;
    }
  }
  const bool isSystem = IsSystemModule(file) && (folder.empty() || SameText(folder, FSearchFolders.front()));
  const std::u16string path = FindFile(name);
  if (path.empty()) {
    if (!isSystem) return WinError::ModuleNotFound;
    AModule = {std::u16string(file), nullptr, {}};
    return WinError::Success;
  }
  TFileBytes bytes;
  const TWinError error = FFiles.LoadBytes(path, bytes);
  if (error != WinError::Success) return error;
  const std::optional<TPeResources> image = TPeResources::Open(bytes.Data);
  if (!image || (image->ProcessorKind() == Processor32) == FIs64BitProcess) {
    if (!isSystem) return WinError::BadExecutable;
    bytes = {};  // an image may hold a placeholder for a file of Windows
  }
  AModule = {isSystem ? std::u16string(file) : path, nullptr, std::move(bytes)};
  return WinError::Success;
}

TWinError TSimulatedModules::LoadModule(std::u16string_view AName, TModule& AModule) {
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    TLoaded loaded;
    const TWinError error = FindModule(AName, loaded);
    if (error != WinError::Success) return error;
    handle = FLoaded.Add(std::move(loaded));
  }
  AModule = TModule(*this, handle);
  return WinError::Success;
}

TWinError TSimulatedModules::FindExport(const TModule& AModule, std::string_view AName, TProcedure& AProcedure) {
  const std::lock_guard lock(FMutex);
  const TLoaded* const loaded = FLoaded.Find(AModule.Value());
  if (loaded == nullptr) return WinError::InvalidHandle;
  // names of exports are compared to the letter
  if (loaded->Entry == nullptr || FromAscii(AName) != EntryName) return WinError::ProcedureNotFound;
  AProcedure = reinterpret_cast<TProcedure>(loaded->Entry);
  return WinError::Success;
}

TWinError TSimulatedModules::LoadAsResource(std::u16string_view APath, TModule& AModule) {
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    if (APath.empty()) return WinError::InvalidParameter;
    const std::u16string path = FindFile(WithExtension(APath));
    if (path.empty()) return WinError::FileNotFound;
    TLoaded loaded;
    const TWinError error = FFiles.LoadBytes(path, loaded.Resources);
    if (error != WinError::Success) return error;
    if (!TPeResources::Open(loaded.Resources.Data)) return WinError::BadExecutable;
    handle = FLoaded.Add(std::move(loaded));
  }
  AModule = TModule(*this, handle);
  return WinError::Success;
}

TWinError TSimulatedModules::LoadStringResource(const TModule& AModule, std::uint32_t AId, std::uint32_t ALimit,
                                                std::u16string& AText) {
  if (ALimit == 0) return WinError::InvalidParameter;
  TFileBytes bytes;
  {
    const std::lock_guard lock(FMutex);
    const TLoaded* const loaded = FLoaded.Find(AModule.Value());
    if (loaded == nullptr) return WinError::InvalidHandle;
    bytes = loaded->Resources;
  }
  const std::optional<TPeResources> resources = TPeResources::Open(bytes.Data);
  if (!resources || !resources->HasResources()) return WinError::ResourceDataNotFound;
  std::u16string text = resources->FindString(AId, FLanguage);
  if (text.size() >= ALimit) text.resize(ALimit - 1);
  if (text.empty()) return WinError::ResourceNameNotFound;
  AText = std::move(text);
  return WinError::Success;
}

TWinError TSimulatedModules::QueryDllVersion(std::u16string_view AName, TDllVersion& AVersion) {
  constexpr std::uint32_t PlatformNt = 2;  // DLLVER_PLATFORM_NT
  const std::lock_guard lock(FMutex);
  TLoaded module;
  const TWinError error = FindModule(AName, module);
  if (error != WinError::Success) return error;
  const bool isVista = FVersion.Major >= 6;
  const std::uint32_t minor = isVista ? FVersion.Minor : 0;
  const bool hasShell6 = FVersion.Major > 5 || (FVersion.Major == 5 && FVersion.Minor >= 1);
  if (SameText(module.Name, u"shell32.dll")) {
    AVersion = {hasShell6 ? 6U : FVersion.Major, minor, FVersion.Build, PlatformNt};
  } else if (SameText(module.Name, u"shlwapi.dll")) {
    // the version of the browser that came with the system
    AVersion = {hasShell6 ? 6U : 5U, minor, FVersion.Build, PlatformNt};
  } else if (SameText(module.Name, u"comctl32.dll")) {
    // what a process without a manifest gets
    AVersion = {5, hasShell6 ? 82U : 81U, FVersion.Build, PlatformNt};
  } else {
    return WinError::ProcedureNotFound;
  }
  return WinError::Success;
}

TWinError TSimulatedModules::GetHostPath(std::u16string& APath) {
  const std::lock_guard lock(FMutex);
  APath = FHostPath;
  return WinError::Success;
}

TWinError TSimulatedModules::GetOwnPath(std::u16string& APath) {
  const std::lock_guard lock(FMutex);
  APath = std::u16string(HostFolder()) + u"Varcolin.dll";
  return WinError::Success;
}

void TSimulatedModules::CloseValue(TModuleTag, std::uintptr_t AModule) noexcept {
  const std::lock_guard lock(FMutex);
  FLoaded.Remove(AModule);
}

void TSimulatedModules::RegisterModule(std::u16string_view AName, TGetInstance AEntry) {
  const std::lock_guard lock(FMutex);
  FRegistered.insert_or_assign(std::u16string(AName), AEntry);
}

std::size_t TSimulatedModules::LoadCount(std::u16string_view AName) {
  const std::lock_guard lock(FMutex);
  return FLoaded.CountIf([&](const TLoaded& ALoaded) { return SameText(ALoaded.Name, AName); });
}

void TSimulatedModules::SetHostPath(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  FHostPath = APath;
}

std::size_t TSimulatedModules::OpenHandleCount() {
  const std::lock_guard lock(FMutex);
  return FLoaded.Count();
}

std::u16string TSimulatedModules::SearchFile(std::u16string_view AName) {
  const std::lock_guard lock(FMutex);
  return FindFile(AName);
}

}  // namespace varcolin
