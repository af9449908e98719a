#include "locations/uLocationVistaUpdate.h"

#include <cstring>
#include <memory_resource>
#include <optional>
#include <string>
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

/// Names that are kept elsewhere.
using TNameSet = std::pmr::unordered_set<std::u16string_view, TTextHash, TTextEqual>;

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
  TManifestReader manifests(*FXml);
  try {
    if (HasPackages()) {
      ReadPackages(manifests);
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

void TLocationVistaUpdate::ReadPackages(TManifestReader& AManifests) {
  TRegistryKey packages;
  if (!OpenPackages(*FRegistry, packages)) return;  // no package has a key, so none is installed
  // all keys first and all files then: in turn, each would find the processor's caches full of the other's
  FUpdateList = FindInstalled(packages);
  std::pmr::monotonic_buffer_resource memory;
  TNameSet contained(&memory);
  contained.reserve(FUpdateList.size());  // most packages are contained in one other
  std::vector<std::byte> buffer;
  std::erase_if(FUpdateList, [&](TTemporaryInfo& AInfo) {
    CheckTerminated();
    TManifest& manifest = AInfo.FManifest;
    if (!ReadUpdate(AInfo.FCode, AManifests, buffer, manifest)) return true;
    contained.insert(manifest.ContainedNames.begin(), manifest.ContainedNames.end());
    return manifest.IdentityName->empty();
  });
  std::erase_if(FUpdateList,
                [&](const TTemporaryInfo& AInfo) { return contained.contains(*AInfo.FManifest.IdentityName); });
  // for the few that are left of the many that were read
  for (TTemporaryInfo& info : FUpdateList) {
    info.FRegistryKeys.push_back(TRegistryEx::RegistryKeyToStr(ViewFlag(), ERegistryRoot::LocalMachine,
                                                               Format(u"%s\\%s", {PackagesKey, info.FCode}), u""));
    info.FFileNames.push_back(PathOf(info.FCode));
  }
}

std::u16string TLocationVistaUpdate::PathOf(std::u16string_view ACode) const {
  std::u16string path;
  path.reserve(FPackagesFolder.size() + ACode.size() + Extension.size());
  return path.append(FPackagesFolder).append(ACode).append(Extension);
}

std::deque<TLocationVistaUpdate::TTemporaryInfo> TLocationVistaUpdate::FindInstalled(
    const TRegistryKey& APackages) const {
  std::deque<TTemporaryInfo> installed;
  TFindHandle walk;
  TFoundFile file;
  for (TWinError error = FFiles->FindFirst(PathOf(u"*"), walk, file); error == WinError::Success;
       error = FFiles->FindNext(walk, file)) {
    CheckTerminated();
    std::u16string code = file.Name.substr(0, file.Name.rfind(u'.'));
    bool canUninstall = false;
    if (!IsPackageInstalled(APackages, code, canUninstall)) continue;
    TTemporaryInfo& info = installed.emplace_back();
    info.FCode = std::move(code);
    info.FIsCanUninstall = canUninstall;
  }
  return installed;
}

bool TLocationVistaUpdate::ReadUpdate(std::u16string_view ACode, TManifestReader& AManifests,
                                      std::vector<std::byte>& ABuffer, TManifest& AManifest) const {
  try {
    if (FFiles->ReadWhole(PathOf(ACode), LargestManifest, ABuffer) != WinError::Success ||
        AManifests.Read(ABuffer, AManifest) != WinError::Success) {
      return false;
    }
  } catch (const std::exception&) {
    return false;  // whatever one manifest does must not hide the others
  }
  return AManifest.IdentityName && AManifest.Identifier && AManifest.ReleaseTypeName &&
         DLLGlobals::DecodeReleaseType(*AManifest.ReleaseTypeName) != TReleaseType::rtNone;
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
  for (TTemporaryInfo& info : FUpdateList) {
    CheckTerminated();
    codes.insert(info.FCode);
    if (!TItemUpdate::ItemByCode(info.FCode, FTypeLocation)) Add(info);
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
  update->FPackageCode = AInfo.FCode;
  update->FRegistryKeys = std::move(AInfo.FRegistryKeys);
  update->FFileNames = std::move(AInfo.FFileNames);
  update->FManifest = &AInfo.FManifest;
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
  update->FManifest = nullptr;
  TItemUpdate::List().Append(std::move(update));
}

}  // namespace varcolin
