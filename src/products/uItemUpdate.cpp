#include "products/uItemUpdate.h"

#include <string>
#include <utility>

#include "products/uItemProgram.h"
#include "services/uDLLGlobals.h"
#include "services/uDLLStringsLocalized.h"
#include "services/uFileUtils.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uFormat.h"
#include "support/uText.h"

namespace varcolin {

namespace {

/// The name of an update with this release type; the localised texts follow the order of the types.
ELocalizedString NameFor(TReleaseType AType) {
  return static_cast<ELocalizedString>(static_cast<int>(AType) - static_cast<int>(TReleaseType::rtSoftwareUpdate));
}
static_assert(static_cast<int>(ELocalizedString::S_SOFTWARE_UPDATE) == 0);
static_assert(static_cast<int>(ELocalizedString::S_HOTFIX) ==
              static_cast<int>(TReleaseType::rtHotfix) - static_cast<int>(TReleaseType::rtSoftwareUpdate));

}  // namespace

struct TItemUpdate::TState {
  explicit TState(IIcons& AIcons) : IconLists(AIcons) { IconLists.AppendDefault(); }

  TIconLists IconLists;
  TProductList<TItemUpdate> List;
};

std::unique_ptr<TItemUpdate::TState> TItemUpdate::FState;

void TItemUpdate::Load(IIcons& AIcons) { FState = std::make_unique<TState>(AIcons); }

void TItemUpdate::Unload() noexcept { FState.reset(); }

TProductList<TItemUpdate>& TItemUpdate::List() noexcept { return FState->List; }

TIconLists& TItemUpdate::Icons() noexcept { return FState->IconLists; }

TItemUpdate::TItemUpdate(TTypeUninstallLocation ALoc) : TItemProduct(ALoc) { FIconIndex = 0; }

void TItemUpdate::DoReadFastInfo(const TKeyStore& AKeys) {
  TItemProduct::DoReadFastInfo(AKeys);
  if (FLocation == TTypeUninstallLocation::ulVistaUpdate) ReadPackage(AKeys);
  if (FReleaseType == TReleaseType::rtNone) FReleaseType = TReleaseType::rtUpdate;
  NameItself();
  if (FParentDisplayName.empty()) FParentDisplayName = TextOf(WinVersionInfo::WindowsVersion());
}

void TItemUpdate::ReadPackage(const TKeyStore& AKeys) {
  if (const TManifest* const manifest = FManifest; manifest != nullptr) {
    FDisplayName = manifest->DisplayName;
    FComments = manifest->Description;
    FPublisher = manifest->Company;
    FURLHelpLink = manifest->SupportInformation;
    if (manifest->Identifier) {
      FReleaseType = DLLGlobals::DecodeReleaseType(manifest->ReleaseTypeName.value_or(u""));
      FKBID = *manifest->Identifier;
    }
    FUpdateID = manifest->IdentityName.value_or(u"");
    FDisplayVersion = manifest->Version;
    if (!manifest->Language.empty()) FLanguage = DLLGlobals::LocaleIDToString(manifest->Language);
  }
  for (const std::u16string& keyText : FRegistryKeys) {
    const auto values = AKeys.Get(keyText);
    if (!values) continue;
    if (auto folder = values->Text(u"InstallLocation", TKeySnapshot::EStrings::PlainOrExpandable)) {
      FInstallLocation = *std::move(folder);
    }
    const auto high = values->Number(u"InstallTimeHigh");
    const auto low = values->Number(u"InstallTimeLow");
    if (high && low) FInstallDate = DLLGlobals::FileTimeToDateTime(TFileTime{std::uint64_t{*high} << 32 | *low});
  }
}

std::u16string TItemUpdate::GetActionCommand(TPossibleActions AAction) const {
  if (FLocation != TTypeUninstallLocation::ulVistaUpdate) return TItemProduct::GetActionCommand(AAction);
  if (AAction != TPossibleActions::paUninstall) return {};
  // the package manager serves packages of its own width only
  return Format(
      u"%spkgmgr.exe /up:%s",
      {WinVersionInfo::IsWow64Process() ? FileUtils::WinSystemX64() : FileUtils::WinSystemX32(), FPackageCode});
}

void TItemUpdate::NameItself() {
  if ((FDisplayName.empty() || SameText(FDisplayName, u"default")) && !FKBID.empty()) {
    FDisplayName = Format(DLLStringsLocalized::Text(NameFor(FReleaseType)), {FKBID});
  }
  if (FDisplayName.empty() && !FParentDisplayName.empty()) {
    FDisplayName = Format(DLLStringsLocalized::Text(ELocalizedString::S_SOFTWARE_PATCH), {FParentDisplayName});
  }
}

void TItemUpdate::DoReadSlowInfo() {
  if (FIconIndex > 0) return;
  std::int32_t index = 0;
  bool found = !FDisplayIcon.empty() && Icons().AppendFromLocation(FDisplayIcon, index);
  if (!found) {
    const std::scoped_lock programs(TItemProgram::List().Mutex());
    const auto parent = TItemProgram::List().FindByDisplayName(FParentDisplayName);
    found = parent && parent->FIconIndex > TItemProgram::DefaultIcon &&
            Icons().AppendCopy(TItemProgram::Icons(), parent->FIconIndex, index);
  }
  if (!found) return;
  const std::scoped_lock itemLock(ItemLock());
  FIconIndex = index;
}

}  // namespace varcolin
