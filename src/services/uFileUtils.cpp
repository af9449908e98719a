#include "services/uFileUtils.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/Files.h"
#include "platform/Shell.h"
#include "platform/SystemFacts.h"
#include "registry/uRegistryEx.h"
#include "services/uDLLGlobals.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uExceptions.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::u16string_view DefaultExtensions[] = {u".com", u".exe", u".bat", u".cmd"};
constexpr std::u16string_view X86Suffix = u" (x86)";
constexpr std::u16string_view AppPathsKey = u"\\Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
constexpr std::u16string_view SharedDllsKey = u"\\Software\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";

/// A value that is computed once, on its first use.
template <class T>
class TLazy {
 public:
  template <class TCompute>
  const T& Get(std::recursive_mutex& ALock, TCompute ACompute) {
    if (!FReady.load(std::memory_order_acquire)) {
      const std::scoped_lock guard(ALock);
      if (!FReady.load(std::memory_order_relaxed)) {
        FValue = ACompute();
        FReady.store(true, std::memory_order_release);
      }
    }
    return FValue;
  }

 private:
  std::atomic<bool> FReady{false};
  T FValue;
};

using TTextList = std::vector<std::u16string>;

struct TState {
  IFiles& Files;
  ISystemFacts& System;
  IRegistry& Registry;
  TInterfaceRef<IHelper> Helper = DLLGlobals::Helper();
  TInterfaceRef<iShellHelper> ShellHelper = DLLGlobals::ShellHelper();
  std::recursive_mutex Lock;  // re-entrant, since one value is computed from another
  TLazy<std::u16string> WinSystemX16;
  TLazy<std::u16string> WinSystemX32;
  TLazy<std::u16string> WinSystemX64;
  TLazy<std::u16string> ProgramFilesX32;
  TLazy<std::u16string> ProgramFilesX64;
  TLazy<TTextList> FolderForSearch;
  TLazy<TTextList> ExtForSearch;

  TState(IFiles& AFiles, ISystemFacts& ASystem, IRegistry& ARegistry)
      : Files(AFiles), System(ASystem), Registry(ARegistry) {}
};
std::unique_ptr<TState> LoadedState;

TState& State() {
  if (LoadedState == nullptr) throw EAssertionFailed(u"uFileUtils", __LINE__);
  return *LoadedState;
}

std::u16string WindowsDirectory() {
  TOleText folder;
  State().Helper->GetWindowsFolder(folder.Receive());
  return IncludeTrailingPathDelimiter(folder.View());
}

/// A special folder without a trailing backslash.
std::u16string SpecialFolderPath(std::int32_t ACsidl) {
  TOleText folder;
  State().ShellHelper->GetSpecialFolder(ACsidl, folder.Receive());
  return std::u16string(ExcludeTrailingPathDelimiter(folder.View()));
}

std::u16string ProgramPart(std::u16string_view ACommand) {
  TOleText program;
  State().ShellHelper->GetProgramPart(std::u16string(ACommand).c_str(), program.Receive());
  return std::u16string(Trim(program.View()));
}

using TExists = bool (*)(std::u16string_view);

/// Whether APath exists, as it is or under its name in the other view, which APath becomes then.
bool ExistsX64(std::u16string& APath, TExists AExists) {
  if (AExists(APath)) return true;
  if (!WinVersionInfo::IsWow64Process()) return false;
  const std::u16string& systemX32 = FileUtils::WinSystemX32();
  const std::u16string& systemX64 = FileUtils::WinSystemX64();
  const std::u16string& programsX32 = FileUtils::ProgramFilesX32();
  const std::u16string& programsX64 = FileUtils::ProgramFilesX64();
  const std::pair<const std::u16string&, const std::u16string&> rules[] = {
      {systemX32, systemX64}, {systemX64, systemX32}, {programsX32, programsX64}, {programsX64, programsX32}};
  for (const auto& [own, other] : rules) {
    if (!StartsText(own, APath)) continue;
    std::u16string renamed = ReplaceAllText(APath, own, other);
    if (!AExists(renamed)) return false;
    APath = std::move(renamed);
    return true;
  }
  return false;
}

bool FileExistsX64(std::u16string& APath) { return ExistsX64(APath, FileUtils::FileExists); }

/// The parts of an environment variable's text.
TTextList VariableParts(std::u16string_view AName) {
  std::u16string value;
  if (State().System.GetVariable(AName, value) != WinError::Success) return {};
  const auto parts = Split(value, u';');
  return {parts.begin(), parts.end()};
}

auto FindSame(TTextList& AList, std::u16string_view AText) {
  return std::ranges::find_if(AList, [AText](const std::u16string& AItem) { return SameText(AItem, AText); });
}

const TTextList& FolderForSearch() {
  return State().FolderForSearch.Get(State().Lock, [] {
    TTextList folders = VariableParts(u"PATH");
    for (std::u16string& folder : folders) folder = FileUtils::PreparePathName(folder);
    for (const std::u16string& first :
         {FileUtils::PreparePathName(WindowsDirectory()), FileUtils::WinSystemX32(), FileUtils::WinSystemX16()}) {
      if (const auto found = FindSame(folders, first); found != folders.end()) folders.erase(found);
      folders.insert(folders.begin(), first);
    }
    return folders;
  });
}

const TTextList& ExtForSearch() {
  return State().ExtForSearch.Get(State().Lock, [] {
    TTextList extensions = VariableParts(u"PATHEXT");
    for (std::u16string& extension : extensions) {
      if (!extension.starts_with(u'.')) extension.insert(0, 1, u'.');
    }
    for (const std::u16string_view extension : DefaultExtensions) {
      if (FindSame(extensions, extension) == extensions.end()) extensions.emplace_back(extension);
    }
    return extensions;
  });
}

/// One search for an executable by its bare name.
class TSearch {
 public:
  explicit TSearch(std::u16string_view AFileName) {
    TOleText name;
    State().Helper->GetNameWithoutExtension(std::u16string(AFileName).c_str(), name.Receive());
    FName = name.View();
    const std::u16string_view extension = ExtractFileExt(AFileName);
    FExtensions = extension.empty() ? ExtForSearch() : TTextList{std::u16string(extension)};
  }

  /// The full path; empty when nothing was found.
  std::u16string Run() const {
    std::u16string path = SearchInFolders();
    if (path.empty()) path = InBothViews(&TSearch::SearchAppPaths);
    if (path.empty()) path = InBothViews(&TSearch::SearchSharedDlls);
    return path;
  }

 private:
  std::u16string SearchInFolders() const {
    for (const std::u16string& folder : FolderForSearch()) {
      for (const std::u16string& extension : FExtensions) {
        if (std::u16string path = folder + FName + extension; FileExistsX64(path)) return path;
      }
    }
    return {};
  }

  std::u16string InBothViews(std::u16string (TSearch::*ASearch)(std::uint32_t) const) const {
    std::u16string path = (this->*ASearch)(KeyAccess::Read);
    if (path.empty() && WinVersionInfo::IsWow64Process()) {
      path = (this->*ASearch)(KeyAccess::Read | KeyAccess::Wow64_64Key);
    }
    return path;
  }

  static TRegistryEx MachineRegistry(std::uint32_t AAccess) {
    TRegistryEx registry(State().Registry);
    registry.SetRootKey(ERegistryRoot::LocalMachine);
    registry.SetAccess(AAccess);
    return registry;
  }

  /// A string value's text; empty when it is absent or of another type.
  static std::u16string TextValue(TRegistryEx& ARegistry, std::u16string_view AName) {
    TRegistryValue value;
    const bool isText =
        ARegistry.GetValue(AName, value) && (value.Type == RegType::String || value.Type == RegType::ExpandString);
    return isText ? TextFromBytes(value.Data) : std::u16string{};
  }

  std::u16string SearchAppPaths(std::uint32_t AAccess) const {
    TRegistryEx registry = MachineRegistry(AAccess);
    for (const std::u16string& extension : FExtensions) {
      const std::u16string file = FName + extension;
      if (!registry.OpenKey(std::u16string(AppPathsKey) + file)) continue;
      std::u16string path = FileUtils::PrepareFileName(TextValue(registry, u""));
      if (ExtractFilePath(path).empty()) {
        path = TextValue(registry, u"Path");
        if (!path.empty()) path = FileUtils::PreparePathName(path) + file;
      }
      if (!path.empty() && FileExistsX64(path)) return path;
    }
    return {};
  }

  std::u16string SearchSharedDlls(std::uint32_t AAccess) const {
    TRegistryEx registry = MachineRegistry(AAccess);
    if (!registry.OpenKey(SharedDllsKey)) return {};
    const TTextList names = registry.GetValueNames();
    for (const std::u16string& extension : FExtensions) {
      const std::u16string file = FName + extension;
      for (const std::u16string& name : names) {
        if (!SameText(ExtractFileName(name), file)) continue;
        std::u16string path = name;
        return FileExistsX64(path) ? path : std::u16string{};
      }
    }
    return {};
  }

  std::u16string FName;
  TTextList FExtensions;
};

}  // namespace

void FileUtils::Load(IFiles& AFiles, ISystemFacts& ASystem, IRegistry& ARegistry) {
  LoadedState = std::make_unique<TState>(AFiles, ASystem, ARegistry);
}

void FileUtils::Unload() noexcept { LoadedState.reset(); }

const std::u16string& FileUtils::WinSystemX16() {
  return State().WinSystemX16.Get(State().Lock, [] { return WindowsDirectory() + u"system\\"; });
}

const std::u16string& FileUtils::WinSystemX32() {
  return State().WinSystemX32.Get(State().Lock, [] {
    TOleText folder;
    State().Helper->GetSystemFolder(folder.Receive());
    return IncludeTrailingPathDelimiter(folder.View());
  });
}

const std::u16string& FileUtils::WinSystemX64() {
  return State().WinSystemX64.Get(State().Lock, [] {
    const bool hasNative = WinVersionInfo::IsWow64Process() && WinVersionInfo::IsWindows(TWindowsVersion::wvWinVista);
    return hasNative ? WindowsDirectory() + u"Sysnative\\" : WinSystemX32();
  });
}

const std::u16string& FileUtils::ProgramFilesX32() {
  return State().ProgramFilesX32.Get(State().Lock, [] {
    const bool wow64 = WinVersionInfo::IsWow64Process();
    std::u16string folder = SpecialFolderPath(wow64 ? SpecialFolder::ProgramFilesX86 : SpecialFolder::ProgramFiles);
    if (wow64 && !EndsText(X86Suffix, folder)) folder += X86Suffix;
    return IncludeTrailingPathDelimiter(folder);
  });
}

const std::u16string& FileUtils::ProgramFilesX64() {
  return State().ProgramFilesX64.Get(State().Lock, [] {
    std::u16string folder = SpecialFolderPath(SpecialFolder::ProgramFiles);
    if (WinVersionInfo::IsWow64Process() && EndsText(X86Suffix, folder)) {
      folder.resize(folder.size() - X86Suffix.size());
    }
    return IncludeTrailingPathDelimiter(folder);
  });
}

std::u16string FileUtils::PrepareFileName(std::u16string_view APath) {
  TOleText expanded;
  TOleText normal;
  State().ShellHelper->ExpandEnvironment(Dequoted(APath).c_str(), expanded.Receive());
  State().Helper->NormalizePath(std::u16string(expanded.View()).c_str(), normal.Receive());
  return std::u16string(normal.View());
}

std::u16string FileUtils::PreparePathName(std::u16string_view APath) {
  const std::u16string path = PrepareFileName(APath);
  return path.empty() ? path : IncludeTrailingPathDelimiter(path);
}

std::u16string FileUtils::PrepareCmdFileName(std::u16string_view APath) { return PrepareFileName(ProgramPart(APath)); }

std::u16string FileUtils::CheckFileX64(std::u16string_view AFile) {
  std::u16string path(AFile);
  ExistsX64(path, FileExists);
  return path;
}

std::u16string FileUtils::CheckFolderX64(std::u16string_view ADir) {
  std::u16string path(ADir);
  ExistsX64(path, FolderExists);
  return path;
}

bool FileUtils::SearchPath(std::u16string_view AFileName, std::u16string& APath) {
  const bool bare = ExtractFilePath(AFileName).empty();
  std::u16string found = bare ? TSearch(AFileName).Run() : std::u16string{};
  APath = std::move(found);
  return !APath.empty();
}

void FileUtils::ParseCommand(std::u16string_view ACommand, std::u16string& AFileName, std::u16string& AParams) {
  std::u16string program = ProgramPart(ACommand);
  const std::u16string rest = ReplaceAllText(ACommand, program, u"");
  std::u16string_view params = Trim(rest);
  while (params.starts_with(u' ') || params.starts_with(u'"')) params.remove_prefix(1);
  AParams = Trim(params);
  AFileName = std::move(program);
}

std::u16string FileUtils::MakeCommand(std::u16string_view AFileName, std::u16string_view AParams) {
  std::u16string result(Trim(AFileName));
  if (result.find(u' ') != std::u16string::npos) {
    result = ReplaceAllText(result, u"\"", u"\"\"");
    result.insert(0, 1, u'"');
    result += u'"';
  }
  const std::u16string_view params = Trim(AParams);
  if (!params.empty()) result.append(u" ").append(params);
  return result;
}

bool FileUtils::FileExists(std::u16string_view APath) {
  TFileFacts facts;
  return State().Files.GetFacts(APath, facts) == WinError::Success && !facts.IsFolder();
}

bool FileUtils::FolderExists(std::u16string_view APath) {
  TFileFacts facts;
  return State().Files.GetFacts(APath, facts) == WinError::Success && facts.IsFolder();
}

}  // namespace varcolin
