#include "products/uItemUpdate.h"

#include "products/uItemProgram.h"
#include "services/uDLLStringsLocalized.h"
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
  if (FReleaseType == TReleaseType::rtNone) FReleaseType = TReleaseType::rtUpdate;
  NameItself();
  if (FParentDisplayName.empty()) FParentDisplayName = TextOf(WinVersionInfo::WindowsVersion());
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
