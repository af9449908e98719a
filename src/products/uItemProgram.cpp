#include "products/uItemProgram.h"

#include <bit>
#include <cstring>

#include "platform/Files.h"
#include "platform/Registry.h"
#include "platform/SystemFacts.h"
#include "products/uItemFolder.h"
#include "services/uDLLGlobals.h"
#include "services/uFileUtils.h"
#include "support/Msi.Engine.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {

namespace {

constexpr std::u16string_view ShellCachePath =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\";

/// The record of the shell's add/remove-programs cache. Little-endian, 552 bytes.
class TShellCacheRecord {
 public:
  static constexpr std::size_t Size = 552;

  /// AData must be Size bytes long.
  explicit TShellCacheRecord(std::span<const std::byte> AData) : FData(AData) {}

  [[nodiscard]] bool HasPath() const { return Read<std::uint32_t>(4) != 0; }
  [[nodiscard]] std::int64_t InstallSize() const { return Read<std::int64_t>(8); }
  [[nodiscard]] TFileTime LastUsed() const { return TFileTime{Read<std::uint64_t>(16)}; }
  [[nodiscard]] std::int32_t UseCount() const { return Read<std::int32_t>(24); }
  [[nodiscard]] std::u16string ExecutablePath() const { return TextFromBytes(FData.subspan(28)); }

 private:
  template <class T>
  [[nodiscard]] T Read(std::size_t AOffset) const {
    static_assert(std::endian::native == std::endian::little);
    T value;
    std::memcpy(&value, FData.data() + AOffset, sizeof value);
    return value;
  }

  std::span<const std::byte> FData;
};

/// Fills a field that is still empty with the first plain string that the key holds.
void FillFirst(std::u16string& AField, const TKeySnapshot& AValues, std::initializer_list<std::u16string_view> ANames) {
  if (!AField.empty()) return;
  for (const std::u16string_view name : ANames) {
    if (auto text = AValues.Text(name, TKeySnapshot::EStrings::Plain)) {
      AField = std::move(*text);
      return;
    }
  }
}

}  // namespace

struct TItemProgram::TState {
  TState(IRegistry& ARegistry, IFiles& AFiles, IIcons& AIcons) : Registry(ARegistry), Files(AFiles), IconLists(AIcons) {
    for (const std::u16string_view name : {u"RATING_TRUST", u"RATING_UNKNOWN", u"RATING_RISKY"}) {
      IconLists.AppendOwn(name, name);
    }
    IconLists.AppendDefault();
  }

  IRegistry& Registry;
  IFiles& Files;
  TIconLists IconLists;
  TProductList<TItemProgram> List;
};

std::unique_ptr<TItemProgram::TState> TItemProgram::FState;

void TItemProgram::Load(IRegistry& ARegistry, IFiles& AFiles, IIcons& AIcons) {
  FState = std::make_unique<TState>(ARegistry, AFiles, AIcons);
}

void TItemProgram::Unload() noexcept { FState.reset(); }

TProductList<TItemProgram>& TItemProgram::List() noexcept { return FState->List; }

TIconLists& TItemProgram::Icons() noexcept { return FState->IconLists; }

TItemProgram::TItemProgram(TTypeUninstallLocation ALoc) : TItemProduct(ALoc) { FIconIndex = DefaultIcon; }

bool TItemProgram::RunAction(TPossibleActions& AAction, TNativeUInt& AWndHandle) {
  const bool idle = TItemProduct::RunAction(AAction, AWndHandle);
  if (idle && AAction == TPossibleActions::paRemoveFromRegistry) List().Remove(*this);
  return idle;
}

void TItemProgram::ReadRegistryValues(const TProductKey& AKey) {
  TItemProduct::ReadRegistryValues(AKey);
  FillFirst(FProductID, AKey.Values, {u"ProductID"});
  FillFirst(FRegisteredOwner, AKey.Values, {u"Inno Setup: User Info: Name", u"Inno Setup: User", u"RegOwner"});
  FillFirst(FRegisteredCompany, AKey.Values,
            {u"Inno Setup: User Info: Organization", u"Inno Setup: Organization", u"RegCompany"});
  if (!WinVersionInfo::IsWindows(TWindowsVersion::wvWin7)) ReadShellCache(AKey.Name);
}

void TItemProgram::ReadRegistryCommands(const TProductKey& AKey) {
  FPossibleActions |= ActionBit(TPossibleActions::paRemoveFromRegistry);
  TItemProduct::ReadRegistryCommands(AKey);
}

void TItemProgram::ReadShellCache(std::u16string_view AEntry) {
  std::u16string path(ShellCachePath);
  path.append(AEntry);
  const std::uint32_t access =
      KeyAccess::Read | (WinVersionInfo::IsWow64Process() ? KeyAccess::Wow64_64Key : std::uint32_t{0});
  for (const ERegistryRoot root : {ERegistryRoot::LocalMachine, ERegistryRoot::CurrentUser}) {
    TRegistryKey key;
    if (FState->Registry.OpenKey(root, path, access, key) != WinError::Success) continue;
    TRegistryValue value;
    if (FState->Registry.QueryValue(key, u"SlowInfoCache", value) != WinError::Success) continue;
    if (value.Type != RegType::Binary || value.Data.size() != TShellCacheRecord::Size) continue;
    const TShellCacheRecord record(value.Data);
    if (FEstimatedSize <= 0) FEstimatedSize = record.InstallSize();
    if (const TDateTime used = DLLGlobals::FileTimeToDateTime(record.LastUsed()); FLastUsedDate < used) {
      FLastUsedDate = used;
    }
    if (FUsedFrequencyCount < record.UseCount()) FUsedFrequencyCount = record.UseCount();
    if (record.HasPath() && FSlowExePath.empty()) FSlowExePath = record.ExecutablePath();
  }
}

template <class TWrite>
void TItemProgram::WriteLocked(TWrite AWrite) {
  // always in this order: the host reads a record while it holds the list
  const std::scoped_lock listLock(List().Mutex());
  const std::scoped_lock itemLock(ItemLock());
  AWrite();
}

void TItemProgram::DoReadSlowInfo() {
  FindInstallFolder();
  const TItemFolder* const folder = TItemFolder::ItemByName(FDisplayName, FInstallLocation);
  FillFromExecutable(folder);
  MeasureSize();
  Rate(folder);
  FindIcon(folder);
  FindLastUse(folder);
}

void TItemProgram::FindInstallFolder() {
  std::u16string location = FInstallLocation;
  if (!location.empty()) {
    location = IncludeTrailingPathDelimiter(location);
  } else {
    if (!FGUID.empty()) location = TMsiEngine::InstallLocation(FGUID);
    if (location.empty() && !FSlowExePath.empty()) {
      location = IncludeTrailingPathDelimiter(ExtractFilePath(FSlowExePath));
    }
  }
  WriteLocked([&] { FInstallLocation = std::move(location); });
}

void TItemProgram::FillFromExecutable(const TItemFolder* AFolder) {
  std::u16string location = FInstallLocation;
  std::u16string publisher = FPublisher;
  std::u16string version = FDisplayVersion;
  std::u16string language = FLanguage;
  if (AFolder != nullptr) {
    if (location.empty() && !AFolder->FExecutedFile.empty()) {
      location = IncludeTrailingPathDelimiter(ExtractFilePath(AFolder->FExecutedFile));
    }
    if (publisher.empty()) publisher = AFolder->FCompanyName;
    if (version.empty()) version = AFolder->FProductVersion;
    if (language.empty()) language = AFolder->FTranslations;
  }
  if (!FSlowExePath.empty()) {
    if (publisher.empty()) publisher = DLLGlobals::VersionValue(FSlowExePath, u"CompanyName");
    if (version.empty()) version = DLLGlobals::VersionValue(FSlowExePath, u"ProductVersion");
    if (version.empty()) version = DLLGlobals::VersionValue(FSlowExePath, u"FileVersion");
    if (language.empty()) language = DLLGlobals::VersionLanguage(FSlowExePath);
  }
  WriteLocked([&] {
    FInstallLocation = std::move(location);
    FPublisher = std::move(publisher);
    FDisplayVersion = std::move(version);
    FLanguage = std::move(language);
  });
}

void TItemProgram::MeasureSize() {
  constexpr std::size_t DriveRootLength = 3;
  if (FEstimatedSize > 0 || FInstallLocation.size() <= DriveRootLength) return;
  if (StartsText(IncludeTrailingPathDelimiter(DLLGlobals::WindowsFolder()), FInstallLocation)) return;
  const std::u16string location = IncludeTrailingPathDelimiter(FInstallLocation);
  if (SameText(location, FileUtils::ProgramFilesX32()) || SameText(location, FileUtils::ProgramFilesX64())) return;
  if (!FileUtils::FolderExists(location)) return;
  const std::int64_t size = DLLGlobals::Helper()->GetFolderSize(location.c_str());
  WriteLocked([&] { FEstimatedSize = size; });
}

void TItemProgram::Rate(const TItemFolder* AFolder) {
  const auto service = DLLGlobals::Tolvane();
  constexpr TSoftwareRating Unknown = TSoftwareRating::stUnknown;
  TSoftwareRating rating = FPublisher.empty() ? Unknown : service->GetPublisherRating(FPublisher.c_str());
  if (rating == Unknown && AFolder != nullptr && !AFolder->FExecutedFile.empty()) {
    rating = service->GetFileRating(AFolder->FExecutedFile.c_str());
  }
  if (rating == Unknown && !FSlowExePath.empty()) rating = service->GetFileRating(FSlowExePath.c_str());
  WriteLocked([&] { FSoftwareRating = rating; });
}

void TItemProgram::FindIcon(const TItemFolder* AFolder) {
  if (FIconIndex > DefaultIcon) return;
  static const std::u16string None;
  const std::u16string* const sources[] = {&FDisplayIcon, &FSlowExePath, AFolder ? &AFolder->FIconLocation : &None,
                                           AFolder ? &AFolder->FExecutedFile : &None};
  for (const std::u16string* source : sources) {
    std::int32_t index = 0;
    if (source->empty() || !Icons().AppendFromLocation(*source, index)) continue;
    WriteLocked([&] { FIconIndex = index; });
    return;
  }
}

void TItemProgram::FindLastUse(const TItemFolder* AFolder) {
  if (!WinVersionInfo::IsWindows(TWindowsVersion::wvWin7)) return;
  if (AFolder == nullptr || AFolder->FExecutedFile.empty()) return;
  TFileFacts facts;
  if (FState->Files.GetFacts(AFolder->FExecutedFile, facts) != WinError::Success || facts.IsFolder()) return;
  TFileTime local;
  TDateTime used = 0;
  if (System().ToLocalTime(facts.LastAccessTime, local) == WinError::Success) {
    used = DLLGlobals::FileTimeToDateTime(local);
  }
  WriteLocked([&] { FLastUsedDate = used; });
}

}  // namespace varcolin
