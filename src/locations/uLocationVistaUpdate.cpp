#include "locations/uLocationVistaUpdate.h"

#include <cstring>
#include <optional>
#include <unordered_set>
#include <utility>

#include "platform/Com.h"
#include "platform/Xml.h"
#include "products/uItemUpdate.h"
#include "registry/uKeySnapshot.h"
#include "registry/uKeyStore.h"
#include "registry/uRegistryEx.h"
#include "services/uDLLGlobals.h"
#include "services/uStatisticsLog.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uExceptions.h"
#include "support/uFormat.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {

namespace {

using TNameSet = std::unordered_set<std::u16string, TTextHash, TTextEqual>;

/// Where the packages' keys lie, each named by its code.
constexpr std::u16string_view PackagesKey =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Component Based Servicing\\Packages";
constexpr std::u16string_view Extension = u".mum";
/// Manifests have some kilobytes, the largest ones some megabytes.
constexpr std::size_t LargestManifest = 64 << 20;

std::uint32_t ViewFlag() { return WinVersionInfo::IsWow64Process() ? KeyAccess::Wow64_64Key : 0; }

bool OpenPackages(IRegistry& ARegistry, TRegistryKey& AKey) {
  const std::uint32_t access = KeyAccess::Read | ViewFlag();
  return ARegistry.OpenKey(ERegistryRoot::LocalMachine, PackagesKey, access, AKey) == WinError::Success;
}

/// Whether this Windows has servicing packages.
bool HasPackages() { return WinVersionInfo::IsWindows(TWindowsVersion::wvWinVista, TWindowsVersion::wvWinMaximum); }

/// The same for the watch, which a system that does not tell its version may need.
bool MayHavePackages() {
  try {
    return HasPackages();
  } catch (const TWinVersionInfoException&) {
    return true;
  }
}

std::optional<std::uint32_t> NumberOf(IRegistry& ARegistry, const TRegistryKey& AKey, std::u16string_view AName) {
  TRegistryValue value;
  if (ARegistry.QueryValue(AKey, AName, value) != WinError::Success) return std::nullopt;
  std::uint32_t number = 0;
  if (value.Type != RegType::Dword || value.Data.size() != sizeof number) return std::nullopt;
  std::memcpy(&number, value.Data.data(), sizeof number);
  return number;
}

/// States of a package, in the form without the detail that the low four bits of a byte may add.
namespace PackageState {
constexpr std::uint32_t Staged = 4;
constexpr std::uint32_t InstallPending = 6;
constexpr std::uint32_t Installed = 7;
constexpr std::uint32_t Permanent = 8;
}  // namespace PackageState

std::uint32_t NormalState(std::uint32_t AState) noexcept {
  const std::uint32_t state = AState & 0xFF;
  return (state & 0xF) == 0 ? state >> 4 : state;
}

bool IsInstalledState(std::uint32_t AState) noexcept {
  using namespace PackageState;
  return AState == Staged || AState == InstallPending || AState == Installed || AState == Permanent;
}

bool IsLastingState(std::uint32_t AState) noexcept {
  return AState == PackageState::Staged || AState == PackageState::Permanent;
}

}  // namespace

void TLocationVistaUpdate::Load(IRegistry& ARegistry, IFiles& AFiles, ICom& ACom, IXml& AXml) noexcept {
  FRegistry = &ARegistry;
  FFiles = &AFiles;
  FCom = &ACom;
  FXml = &AXml;
}

void TLocationVistaUpdate::Unload() noexcept {
  FRegistry = nullptr;
  FFiles = nullptr;
  FCom = nullptr;
  FXml = nullptr;
}

TLocationVistaUpdate::TLocationVistaUpdate()
    : TLocationUninstall(TTypeUninstallLocation::ulVistaUpdate),
      FPackagesFolder(Format(u"%sServicing\\Packages\\", {IncludeTrailingPathDelimiter(DLLGlobals::WindowsFolder())})) {
  const TWinError code = Sync().MakeEvent(false, FRegWaitEvent);
  if (code != WinError::Success) throw EOSError(code, u"The event of the servicing watch was refused.");
  ArmWatch();
}

void TLocationVistaUpdate::ArmWatch() {
  if (!MayHavePackages()) return;
  // a watch that cannot go on, as its folder went, gives way to a new one
  if (FWaitHandle && FFiles->RearmWatch(FWaitHandle) != WinError::Success) FWaitHandle.Close();
  if (!FWaitHandle) {
    constexpr std::uint32_t Filter = FileNotify::FileName | FileNotify::FolderName | FileNotify::Attributes |
                                     FileNotify::Size | FileNotify::LastWrite;
    static_cast<void>(FFiles->WatchFolder(FPackagesFolder, true, Filter, FWaitHandle));
  }
  FRegWaitKey.Close();  // closing a watched key may signal the event, so the reset comes after it
  Sync().ResetSignal(FRegWaitEvent);
  if (!OpenPackages(*FRegistry, FRegWaitKey)) return;
  constexpr std::uint32_t Filter = RegNotify::ChangeName | RegNotify::ChangeLastSet;
  static_cast<void>(FRegistry->NotifyChange(FRegWaitKey, true, Filter, FRegWaitEvent));
}

bool TLocationVistaUpdate::CheckChanges() {
  const TWaitable handles[] = {FRegWaitEvent, FWaitHandle};
  const std::size_t count = FWaitHandle ? 2 : 1;
  if (Sync().WaitForAny({handles, count}, 0) == EWaitResult::TimedOut) return false;
  ArmWatch();
  return true;
}

void TLocationVistaUpdate::ReadLocation() {
  const TComScope com(*FCom, ECom::Apartment);
  try {
    if (HasPackages()) {
      ReadPackages();
      CheckTerminated();
      Publish();
    }
  } catch (const EAbort&) {
    // ends this read quietly; the reader thread sees its request to end by itself
  } catch (const std::exception&) {
    StatisticsLog::AddErrorLn();
  }
  FUpdateList.clear();
}

void TLocationVistaUpdate::ReadPackages() {
  TRegistryKey packages;
  if (!OpenPackages(*FRegistry, packages)) return;  // no package has a key, so none is installed
  // all keys first and all files then: in turn, each would find the processor's caches full of the other's
  std::vector<std::unique_ptr<TTemporaryInfo>> installed = FindInstalled(packages);
  TNameSet contained;
  std::vector<std::byte> buffer;
  for (std::unique_ptr<TTemporaryInfo>& info : installed) {
    CheckTerminated();
    info->FManifest = ReadUpdate(info->FCode, buffer);
    if (!info->FManifest) continue;
    for (std::u16string& name : info->FManifest->ContainedNames) contained.insert(std::move(name));
    info->FManifest->ContainedNames.clear();
    if (!info->FManifest->IdentityName->empty()) FUpdateList.push_back(std::move(info));
  }
  std::erase_if(FUpdateList, [&](const auto& AInfo) { return contained.contains(*AInfo->FManifest->IdentityName); });
  // for the few that are left of the many that were read
  for (const auto& info : FUpdateList) {
    info->FRegistryKeys.push_back(TRegistryEx::RegistryKeyToStr(ViewFlag(), ERegistryRoot::LocalMachine,
                                                                Format(u"%s\\%s", {PackagesKey, info->FCode}), u""));
    info->FFileNames.push_back(PathOf(info->FCode));
  }
}

std::u16string TLocationVistaUpdate::PathOf(std::u16string_view ACode) const {
  std::u16string path;
  path.reserve(FPackagesFolder.size() + ACode.size() + Extension.size());
  return path.append(FPackagesFolder).append(ACode).append(Extension);
}

std::vector<std::unique_ptr<TLocationVistaUpdate::TTemporaryInfo>> TLocationVistaUpdate::FindInstalled(
    const TRegistryKey& APackages) const {
  std::vector<std::unique_ptr<TTemporaryInfo>> installed;
  TFindHandle walk;
  TFoundFile file;
  for (TWinError error = FFiles->FindFirst(PathOf(u"*"), walk, file); error == WinError::Success;
       error = FFiles->FindNext(walk, file)) {
    CheckTerminated();
    std::u16string code = file.Name.substr(0, file.Name.rfind(u'.'));
    bool canUninstall = false;
    if (!IsPackageInstalled(APackages, code, canUninstall)) continue;
    TTemporaryInfo& info = *installed.emplace_back(std::make_unique<TTemporaryInfo>());
    info.FCode = std::move(code);
    info.FIsCanUninstall = canUninstall;
  }
  return installed;
}

std::unique_ptr<TManifest> TLocationVistaUpdate::ReadUpdate(std::u16string_view ACode,
                                                            std::vector<std::byte>& ABuffer) const {
  auto manifest = std::make_unique<TManifest>();
  try {
    if (FFiles->ReadWhole(PathOf(ACode), LargestManifest, ABuffer) != WinError::Success ||
        ReadManifest(*FXml, ABuffer, *manifest) != WinError::Success) {
      return nullptr;
    }
  } catch (const std::exception&) {
    return nullptr;  // whatever one manifest does must not hide the others
  }
  if (!manifest->IdentityName || !manifest->Identifier || !manifest->ReleaseTypeName) return nullptr;
  if (DLLGlobals::DecodeReleaseType(*manifest->ReleaseTypeName) == TReleaseType::rtNone) return nullptr;
  return manifest;
}

bool TLocationVistaUpdate::IsPackageInstalled(const TRegistryKey& APackages, std::u16string_view ACode,
                                              bool& ACanUninstall) {
  const std::uint32_t access = KeyAccess::Read | ViewFlag();
  TRegistryKey package;
  if (FRegistry->OpenKey(APackages, ACode, access, package) != WinError::Success) return false;
  std::uint32_t owner = PackageState::Installed;
  TRegistryKey owners;
  if (FRegistry->OpenKey(package, u"Owners", access, owners) == WinError::Success) {
    const auto number = NumberOf(*FRegistry, owners, ACode);
    if (!number) return false;
    owner = NormalState(*number);
  }
  const auto number = NumberOf(*FRegistry, package, u"CurrentState");
  if (!number) return false;
  const std::uint32_t current = NormalState(*number);
  if (!IsInstalledState(owner) || !IsInstalledState(current)) return false;
  ACanUninstall = !IsLastingState(owner) && !IsLastingState(current);
  return true;
}

void TLocationVistaUpdate::Publish() {
  auto& list = TItemUpdate::List();
  list.Expect(list.Count() + FUpdateList.size());
  TNameSet codes;
  for (const auto& info : FUpdateList) {
    CheckTerminated();
    codes.insert(info->FCode);
    if (!TItemUpdate::ItemByCode(info->FCode, FTypeLocation)) Add(*info);
  }
  list.RemoveWhere([&](const TItemUpdate& AItem) {
    CheckTerminated();
    if (AItem.FLocation != FTypeLocation || codes.contains(AItem.FPackageCode)) return false;
    StatisticsLog::Add(u"");
    StatisticsLog::Add(u"Delete Vista Update: %s", {AItem.FPackageCode});
    return true;
  });
}

void TLocationVistaUpdate::Add(TTemporaryInfo& AInfo) {
  auto update = std::make_shared<TItemUpdate>(FTypeLocation);
  update->FPackageCode = std::move(AInfo.FCode);
  update->FRegistryKeys = std::move(AInfo.FRegistryKeys);
  update->FFileNames = std::move(AInfo.FFileNames);
  update->FManifest = std::move(AInfo.FManifest);
  if (AInfo.FIsCanUninstall) update->FPossibleActions = ActionBit(TPossibleActions::paUninstall);
  StatisticsLog::Add(u"");
  StatisticsLog::Add(u"Add Vista Update: %s", {update->FPackageCode});
  for (const std::u16string& name : update->FFileNames) StatisticsLog::Add(name);
  TKeyStore keys(*FRegistry);
  for (const std::u16string& text : update->FRegistryKeys) {
    StatisticsLog::Add(text);
    // read once for the details and for the date
    if (auto values = keys.Get(text)) keys.Put(text, std::move(values));
  }
  update->ReadFastInfo(keys);
  TItemUpdate::List().Append(std::move(update));
}

}  // namespace varcolin
