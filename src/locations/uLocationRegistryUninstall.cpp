#include "locations/uLocationRegistryUninstall.h"

#include <algorithm>

#include "platform/Registry.h"
#include "platform/Sync.h"
#include "products/uItemProgram.h"
#include "products/uItemUpdate.h"
#include "registry/uKeyCache.h"
#include "registry/uKeyStore.h"
#include "registry/uRegistryEx.h"
#include "registry/uRegistryWalk.h"
#include "services/uDLLGlobals.h"
#include "services/uStatisticsLog.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uExceptions.h"
#include "support/uFormat.h"
#include "support/uWindowsExt.h"

namespace varcolin {

namespace {

constexpr TKeySnapshot::EStrings Plain = TKeySnapshot::EStrings::Plain;

constexpr std::u16string_view UninstallPath = u"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr std::u16string_view ClassesProductsPath = u"Installer\\Products";
constexpr std::u16string_view InstallerPaths[] = {
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\Managed\\%s\\Installer\\Products",
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\Managed\\S-1-5-18\\Installer\\Products",
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\Products",
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\%s\\Products",
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\S-1-5-18\\Products",
    u"Software\\Microsoft\\Installer\\Products",
};
constexpr std::u16string_view HotfixPaths[] = {
    u"Software\\Microsoft\\Windows NT\\CurrentVersion\\HotFix",
    u"Software\\Microsoft\\Updates",
};
constexpr ERegistryRoot MachineThenUser[] = {ERegistryRoot::LocalMachine, ERegistryRoot::CurrentUser};

/// How long changes may settle after the first one was seen, in milliseconds.
constexpr std::uint32_t SettleTime = 500;

/// The views to scan, in order: no flag is the process's own view.
std::vector<std::uint32_t> ViewsToScan() {
  if (WinVersionInfo::IsWow64Process()) return {KeyAccess::Wow64_64Key, 0};
  return {0};
}

bool IsSystemComponent(const TKeySnapshot& AValues) { return AValues.Flag(u"SystemComponent"); }

/// The user's security identifier. Without one the paths that name it lead nowhere, and everything else is still found.
std::u16string UserSid() {
  try {
    return WindowsExt::GetUserSID();
  } catch (const EOSError&) {
    StatisticsLog::AddErrorLn();
    return {};
  }
}

/// The article number in a hotfix key's name: "KB958690" and "Q958690-v2" give "958690"; empty when there is none.
std::u16string ArticleNumber(std::u16string_view AName) {
  std::u16string name(AName);
  if (StartsText(u"KB", name)) name = ReplaceAllText(name, u"KB", u"");
  if (StartsText(u"Q", name)) name = ReplaceAllText(name, u"Q", u"");
  const auto end = std::find_if(name.begin(), name.end(), [](char16_t unit) { return unit < u'0' || unit > u'9'; });
  name.erase(end, name.end());
  return name;
}

}  // namespace

TLocationRegistryUninstall::TPlace TLocationRegistryUninstall::TPlace::Below(std::u16string_view AName) const {
  TPlace place{Root, View, {}};
  place.Path.reserve(Path.size() + 1 + AName.size());
  place.Path.append(Path).append(u"\\").append(AName);
  return place;
}

std::u16string TLocationRegistryUninstall::TPlace::Text() const {
  return TRegistryEx::RegistryKeyToStr(View, Root, Path, u"");
}

void TLocationRegistryUninstall::Load(IRegistry& ARegistry) noexcept { FRegistry = &ARegistry; }

void TLocationRegistryUninstall::Unload() noexcept { FRegistry = nullptr; }

TLocationRegistryUninstall::TLocationRegistryUninstall()
    : TLocationUninstall(TTypeUninstallLocation::ulRegistryUninstall), FWatch(*FRegistry, Sync()) {
  FWatch.Arm();
}

bool TLocationRegistryUninstall::CheckChanges() {
  if (!FWatch.IsSignaled()) return false;
  FWatch.Arm();
  Sync().SleepFor(SettleTime);
  return true;
}

void TLocationRegistryUninstall::ReadLocation() {
  struct TCleanUp {
    TLocationRegistryUninstall& Location;
    ~TCleanUp() {
      Location.FProgramList.Clear();
      Location.FUpdateList.Clear();
    }
  } cleanUp{*this};
  try {
    TKeyCache fresh(*FRegistry);
    TKeyCache* const before = ReadBefore();
    ReadEverything(before != nullptr && !FWatch.IsSignaled() ? *before : fresh);
  } catch (const EAbort&) {
    // ends this read quietly; the reader thread sees its request to end by itself
  } catch (const std::exception&) {
    StatisticsLog::AddErrorLn();
  }
}

void TLocationRegistryUninstall::ReadEverything(TKeyCache& AKeys) {
  const std::vector<std::uint32_t> views = ViewsToScan();
  for (const std::uint32_t view : views) {
    for (const ERegistryRoot root : MachineThenUser) ReadUninstallKeys(root, view, AKeys);
  }
  CheckTerminated();
  const std::u16string userSid = UserSid();
  for (const std::uint32_t view : views) {
    for (const ERegistryRoot root : MachineThenUser) ReadInstallerKeys(root, view, userSid);
  }
  CheckTerminated();
  for (const std::uint32_t view : views) {
    ReadInstallerPath({ERegistryRoot::ClassesRoot, view, std::u16string(ClassesProductsPath)});
  }
  CheckTerminated();
  for (const std::uint32_t view : views) {
    for (const std::u16string_view path : HotfixPaths) {
      for (const ERegistryRoot root : MachineThenUser) ReadHotfixTree({root, view, std::u16string(path)});
    }
  }
  CheckTerminated();
  MergeUpdatesOverPrograms();
  CheckTerminated();
  PublishPrograms();
  PublishUpdates();
}

std::vector<std::u16string> TLocationRegistryUninstall::SubKeyNames(const TPlace& APlace) {
  TRegistryKey key;
  if (FRegistry->OpenKey(APlace.Root, APlace.Path, KeyAccess::Read | APlace.View, key) != WinError::Success) return {};
  return EnumKeyNames(*FRegistry, key);
}

std::shared_ptr<const TKeySnapshot> TLocationRegistryUninstall::ReadKey(const TPlace& APlace) {
  return TKeySnapshot::ReadAt(*FRegistry, APlace.Root, APlace.Path, KeyAccess::Read | APlace.View);
}

std::u16string TLocationRegistryUninstall::DisplayNameOf(const TKeySnapshot& AValues) {
  for (const std::u16string_view name : {u"DisplayName", u"ProductName", u"PackageName"}) {
    if (auto text = AValues.Text(name, Plain)) return *text;
  }
  return {};
}

std::u16string TLocationRegistryUninstall::GuidOf(const TKeySnapshot& AValues, std::u16string_view AKeyName) {
  if (const auto productID = AValues.Text(u"ProductID", Plain)) {
    std::u16string guid = DLLGlobals::TryDecodeGUIDFromStr(*productID);
    if (!guid.empty()) return guid;
  }
  return DLLGlobals::TryDecodeGUIDFromStr(AKeyName);
}

bool TLocationRegistryUninstall::ReadEntry(TTemporaryInfo& AInfo, const TPlace& APlace, std::u16string_view AName,
                                           const std::shared_ptr<const TKeySnapshot>& AValues) {
  const TKeySnapshot& values = *AValues;
  if (AInfo.FInternalName.empty()) AInfo.FInternalName = AName;
  if (AInfo.FDisplayName.empty()) AInfo.FDisplayName = DisplayNameOf(values);
  if (AInfo.FGUID.empty()) {
    const std::size_t lastDelimiter = APlace.Path.rfind(u'\\');
    AInfo.FGUID = GuidOf(values, std::u16string_view(APlace.Path).substr(lastDelimiter + 1));
  }
  for (const std::u16string_view name : {u"ReleaseType", u"Type"}) {
    if (AInfo.FReleaseType != TReleaseType::rtNone) break;
    if (const auto text = values.Text(name, Plain)) AInfo.FReleaseType = DLLGlobals::DecodeReleaseType(*text);
  }
  if (AInfo.FReleaseType == TReleaseType::rtNone || AInfo.FReleaseType == TReleaseType::rtUpdate) {
    constexpr std::uint32_t LastPatchType = 8;
    const std::uint32_t patchType = values.Number(u"PatchType").value_or(0);
    if (patchType >= 1 && patchType <= LastPatchType) AInfo.FReleaseType = static_cast<TReleaseType>(patchType - 1);
  }
  const auto fill = [&](std::u16string& AField, std::u16string_view AValueName) {
    if (!AField.empty()) return;
    if (auto text = values.Text(AValueName, Plain)) AField = std::move(*text);
  };
  fill(AInfo.FParentKeyName, u"ParentKeyName");
  fill(AInfo.FParentDisplayName, u"ParentDisplayName");
  if (AInfo.FReleaseType == TReleaseType::rtNone &&
      !(AInfo.FParentKeyName.empty() && AInfo.FParentDisplayName.empty())) {
    AInfo.FReleaseType = TReleaseType::rtUpdate;
  }
  AInfo.AddKey({APlace.Text(), AValues, nullptr});
  return !AInfo.FDisplayName.empty() || !AInfo.FGUID.empty();
}

void TLocationRegistryUninstall::ReadUninstallKeys(ERegistryRoot ARoot, std::uint32_t AView, TKeyCache& AKeys) {
  CheckTerminated();
  const TPlace place{ARoot, AView, std::u16string(UninstallPath)};
  const auto parent = AKeys.Read(ARoot, place.Path, AView);
  if (!parent) return;
  FProgramList.Expect(parent->SubKeys.size());
  // the user's keys are the same in both views, and the process's own view is the last one
  const bool isLastRead = ARoot != ERegistryRoot::CurrentUser || AView == 0;
  // each key is read once; system components wait until every visible entry is known
  std::vector<std::pair<std::u16string_view, std::shared_ptr<const TKeySnapshot>>> systemComponents;
  for (const std::u16string& entry : parent->SubKeys) {
    CheckTerminated();
    const TPlace below = place.Below(entry);
    const auto key = AKeys.Read(ARoot, below.Path, AView);
    if (isLastRead) AKeys.Forget(ARoot, below.Path, AView);
    if (!key || !key->Values->HasValues()) continue;
    if (IsSystemComponent(*key->Values)) {
      systemComponents.emplace_back(entry, key->Values);
    } else {
      ReadVisibleEntry(below, entry, key->Values);
    }
  }
  for (auto& [entry, values] : systemComponents) {
    CheckTerminated();
    ReadSystemComponent(place.Below(entry), entry, std::move(values));
  }
}

void TLocationRegistryUninstall::ReadVisibleEntry(const TPlace& APlace, std::u16string_view AName,
                                                  std::shared_ptr<const TKeySnapshot> AValues) {
  auto info = std::make_unique<TTemporaryInfo>();
  if (!ReadEntry(*info, APlace, AName, AValues)) return;
  if (FProgramList.Find(info->FGUID, info->FDisplayName) != nullptr) return;
  if (info->FReleaseType != TReleaseType::rtNone) {
    FUpdateList.Append(std::move(info));
  } else {
    TTemporaryInfo& program = FProgramList.Append(std::move(info));
    for (const std::u16string& line : AValues->Strings(u"ProductCodes").value_or(std::vector<std::u16string>{})) {
      const std::u16string guid = DLLGlobals::TryDecodeGUIDFromStr(line);
      if (!guid.empty()) FProgramList.IndexGuid(guid, program);
    }
  }
}

void TLocationRegistryUninstall::ReadSystemComponent(const TPlace& APlace, std::u16string_view AName,
                                                     std::shared_ptr<const TKeySnapshot> AValues) {
  std::u16string guid = GuidOf(*AValues, AName);
  TTemporaryInfo* const program = FProgramList.Find(guid, DisplayNameOf(*AValues));
  if (program == nullptr) {
    FGUIDSystemList.insert(std::move(guid));
    return;
  }
  FProgramList.AddKey({APlace.Text(), std::move(AValues), nullptr}, *program);
  FProgramList.AdoptGuid(guid, *program);
}

void TLocationRegistryUninstall::ReadInstallerKeys(ERegistryRoot ARoot, std::uint32_t AView,
                                                   std::u16string_view AUserSid) {
  for (const std::u16string_view path : InstallerPaths) {
    CheckTerminated();
    ReadInstallerPath({ARoot, AView, ReplaceAllText(path, u"%s", AUserSid)});
  }
}

void TLocationRegistryUninstall::ReadInstallerPath(const TPlace& APath) {
  for (const std::u16string& name : SubKeyNames(APath)) {
    CheckTerminated();
    const std::u16string guid = DLLGlobals::TryDecodeGUIDFromStr(name);
    if (!guid.empty()) ReadInstallerProduct(APath.Below(name), name, guid);
  }
}

void TLocationRegistryUninstall::ReadInstallerProduct(const TPlace& AProduct, std::u16string_view AName,
                                                      const std::u16string& AGuid) {
  TPlace dataPlace = AProduct.Below(u"InstallProperties");
  auto values = ReadKey(dataPlace);
  const bool isInner = values != nullptr;
  if (!isInner) {
    dataPlace = AProduct;
    values = ReadKey(dataPlace);
  }
  if (!values) return;
  const std::u16string displayName = DisplayNameOf(*values);
  TTemporaryInfo* program = FProgramList.Find(AGuid, displayName);
  if (program == nullptr && !IsSystemComponent(*values) && !FGUIDSystemList.contains(AGuid)) {
    auto info = std::make_unique<TTemporaryInfo>();
    info->FGUID = AGuid;
    info->FDisplayName = displayName;
    if (ReadEntry(*info, dataPlace, AName, values)) program = &FProgramList.Append(std::move(info));
  }
  if (program == nullptr) return;
  if (isInner) {
    FProgramList.AddKey({AProduct.Text(), nullptr, std::move(values)}, *program);
  } else {
    FProgramList.AddKey({AProduct.Text(), std::move(values), nullptr}, *program);
  }
  FProgramList.AdoptGuid(AGuid, *program);
  ReadPatches(AProduct, *program);
}

void TLocationRegistryUninstall::ReadPatches(const TPlace& AProduct, const TTemporaryInfo& AInfo) {
  const TPlace patches = AProduct.Below(u"Patches");
  for (const std::u16string& name : SubKeyNames(patches)) {
    CheckTerminated();
    ReadPatch(patches.Below(name), name, AInfo);
  }
}

void TLocationRegistryUninstall::ReadPatch(const TPlace& APatch, std::u16string_view AName,
                                           const TTemporaryInfo& AInfo) {
  constexpr std::uint32_t Applied = 1;
  const std::u16string guid = DLLGlobals::TryDecodeGUIDFromStr(AName);
  if (guid.empty()) return;
  auto values = ReadKey(APatch);
  if (!values) return;
  const std::u16string displayName = DisplayNameOf(*values);
  TTemporaryInfo* update = FUpdateList.Find(guid, displayName);
  if (update == nullptr) update = FUpdateList.Find(guid, Format(u"%s.%s", {AInfo.FGUID, displayName}));
  if (update == nullptr) update = FUpdateList.Find(guid, Format(u"%s.%s", {AInfo.FInternalName, displayName}));
  if (update == nullptr && values->Number(u"State").value_or(Applied) == Applied) {
    auto info = std::make_unique<TTemporaryInfo>();
    info->FGUID = guid;
    info->FDisplayName = displayName;
    info->FParentDisplayName = AInfo.FDisplayName;
    info->FParentKeyName = AInfo.FInternalName;
    if (ReadEntry(*info, APatch, AName, values)) update = &FUpdateList.Append(std::move(info));
  }
  if (update == nullptr) return;
  FUpdateList.AddKey({APatch.Text(), std::move(values), nullptr}, *update);
  FUpdateList.AdoptGuid(guid, *update);
}

void TLocationRegistryUninstall::ReadHotfixTree(const TPlace& AStart) {
  // depth first, each key before its subkeys; the keys still to visit stand here with the next one last
  std::vector<TPlace> pending{AStart};
  while (!pending.empty()) {
    const TPlace place = std::move(pending.back());
    pending.pop_back();
    const auto values = ReadKey(place);
    if (!values) continue;
    ReadHotfix(place, *values);
    if (!values->MayHaveSubKeys()) continue;
    const std::vector<std::u16string> names = SubKeyNames(place);
    for (auto name = names.rbegin(); name != names.rend(); ++name) pending.push_back(place.Below(*name));
  }
}

void TLocationRegistryUninstall::ReadHotfix(const TPlace& APlace, const TKeySnapshot& AValues) {
  constexpr std::size_t ShortestNumber = 4;
  TTemporaryInfo* update = nullptr;
  TTemporaryInfo* program = nullptr;
  if (auto link = AValues.Text(u"ARPLink", Plain)) {
    link->push_back(u'\\');
    update = FUpdateList.FindByRegistryKey(*link);
    if (update == nullptr) program = FProgramList.FindByRegistryKey(*link);
  } else {
    const std::size_t lastDelimiter = APlace.Path.rfind(u'\\');
    const std::u16string number = ArticleNumber(std::u16string_view(APlace.Path).substr(lastDelimiter + 1));
    if (number.size() < ShortestNumber) return;
    update = FUpdateList.FindByNumber(number);
    if (update == nullptr) program = FProgramList.FindByNumber(number);
  }
  if (program != nullptr) update = &MoveToUpdates(*program);
  if (update != nullptr) FUpdateList.AddKey({APlace.Text(), nullptr, nullptr}, *update);
}

TTemporaryInfo& TLocationRegistryUninstall::MoveToUpdates(TTemporaryInfo& AProgram) {
  TTemporaryInfo& update = FUpdateList.AppendWithoutGuid(AProgram.Clone());
  FProgramList.Remove(AProgram);
  return update;
}

void TLocationRegistryUninstall::MergeUpdatesOverPrograms() {
  FUpdateList.ForEach([this](TTemporaryInfo& AUpdate) {
    TTemporaryInfo* const program = FProgramList.FindByNameAndGuid(AUpdate.FDisplayName, AUpdate.FGUID);
    if (program == nullptr) return;
    for (TTemporaryInfo::TKey& key : program->Keys()) AUpdate.AddKey(std::move(key));
    FProgramList.Remove(*program);
  });
}

template <class TItem>
void TLocationRegistryUninstall::Fill(TItem& AItem, std::u16string_view AAddLine, TTemporaryInfo& AInfo) {
  AItem.FDisplayNameNative = std::move(AInfo.FDisplayName);
  AItem.FGUID = std::move(AInfo.FGUID);
  StatisticsLog::Add(u"");
  StatisticsLog::Add(AAddLine, {AItem.FDisplayNameNative, AItem.FGUID});
  TKeyStore keys(*FRegistry);
  AItem.FRegistryKeys.reserve(AInfo.Keys().size());
  for (TTemporaryInfo::TKey& key : AInfo.Keys()) {
    StatisticsLog::Add(key.Text);
    if (key.Values) keys.Put(key.Text, std::move(key.Values));
    if (key.InnerValues) keys.Put(key.Text + u"InstallProperties\\", std::move(key.InnerValues));
    AItem.FRegistryKeys.push_back(std::move(key.Text));
  }
  AItem.ReadFastInfo(keys);
}

namespace {

/// Takes the products of the registry that AIsKnown no longer knows off a list, with a line in the log for each.
template <class TItem, class TIsKnown>
void RemoveVanished(TProductList<TItem>& AList, std::u16string_view ADeleteLine, void (*ACheckTerminated)(),
                    TIsKnown AIsKnown) {
  AList.RemoveWhere([&](const TItem& AItem) {
    ACheckTerminated();
    if (AItem.FLocation != TTypeUninstallLocation::ulRegistryUninstall || AIsKnown(AItem)) return false;
    StatisticsLog::Add(u"");
    StatisticsLog::Add(ADeleteLine, {AItem.FDisplayNameNative, AItem.FGUID});
    return true;
  });
}

}  // namespace

void TLocationRegistryUninstall::PublishPrograms() {
  auto& list = TItemProgram::List();
  list.Expect(FProgramList.FoundCount());
  FProgramList.ForEach([&](TTemporaryInfo& AInfo) {
    CheckTerminated();
    if (AInfo.FDisplayName.empty()) return;
    if (const auto known = list.Find(AInfo.FGUID, AInfo.FDisplayName, FTypeLocation)) {
      known->FIsNeedReadSlowInfo = true;
      return;
    }
    auto program = std::make_shared<TItemProgram>(FTypeLocation);
    Fill(*program, u"Add Program: %s (%s)", AInfo);
    list.Append(std::move(program));
  });
  RemoveVanished(list, u"Delete Program: %s (%s)", &TLocationUninstall::CheckTerminated,
                 [this](const TItemProgram& AItem) {
                   return FProgramList.Find(AItem.FGUID, AItem.FDisplayNameNative) != nullptr;
                 });
}

void TLocationRegistryUninstall::PublishUpdates() {
  auto& list = TItemUpdate::List();
  list.Expect(FUpdateList.FoundCount());
  FUpdateList.ForEach([&](TTemporaryInfo& AInfo) {
    CheckTerminated();
    if (const auto known = list.Find(AInfo.FGUID, AInfo.FDisplayName, FTypeLocation)) {
      known->FIsNeedReadSlowInfo = true;
      return;
    }
    auto update = std::make_shared<TItemUpdate>(FTypeLocation);
    update->FReleaseType = AInfo.FReleaseType;
    update->FParentKeyName = AInfo.FParentKeyName;
    update->FParentDisplayName = AInfo.FParentDisplayName;
    Fill(*update, u"Add Registry Update: %s (%s)", AInfo);
    list.Append(std::move(update));
  });
  RemoveVanished(
      list, u"Delete Registry Update: %s (%s)", &TLocationUninstall::CheckTerminated,
      [this](const TItemUpdate& AItem) { return FUpdateList.Find(AItem.FGUID, AItem.FDisplayNameNative) != nullptr; });
}

}  // namespace varcolin
