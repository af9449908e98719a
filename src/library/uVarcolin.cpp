#include "library/uVarcolin.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "intf/intf_Quillet.h"
#include "library/uShellLinkFile.h"
#include "library/uWindowsFeatures.h"
#include "locations/uLocationUninstall.h"
#include "products/uInterfaceGuard.h"
#include "products/uItemProductCollection.h"
#include "products/uItemProgram.h"
#include "products/uItemUpdate.h"
#include "services/uDLLStringsLocalized.h"
#include "services/uLibraryList.h"
#include "support/uText.h"

namespace varcolin {

namespace {

/// ASCII letters only: a GUID has no others, and no other unit may pass for one of them.
bool SameGuidText(std::u16string_view AFirst, std::u16string_view ASecond) noexcept {
  const auto lower = [](char16_t AUnit) { return AUnit >= u'A' && AUnit <= u'Z' ? char16_t(AUnit + 32) : AUnit; };
  if (AFirst.size() != ASecond.size()) return false;
  for (std::size_t index = 0; index < AFirst.size(); ++index) {
    if (lower(AFirst[index]) != lower(ASecond[index])) return false;
  }
  return true;
}

template <class TCollection>
void MakeCollection(IProductCollection** AResult) noexcept {
  if (AResult == nullptr) return;
  *AResult = nullptr;
  GuardInterface([&] { *AResult = MakeObject<TCollection, IProductCollection>().Detach(); });
}

/// Stops every action of a list while the list is locked, so that none is added meanwhile.
template <class TItem>
void StopActions(TProductList<TItem>& AList) {
  const std::lock_guard lock(AList.Mutex());
  const auto items = AList.Snapshot();
  for (const auto& item : items) item->TerminateAction();  // all first, so that their ends are waited for together
  for (const auto& item : items) item->StopActionThread();
}

}  // namespace

void TVarcolin::Load() noexcept { FHostEvent = TEventHandler{}; }

void TVarcolin::Unload() noexcept { FManager.Reset(); }

IVarcolin* TVarcolin::Instance(const char16_t* AGuid) {
  if (AGuid == nullptr || !SameGuidText(AGuid, VarcolinGuidText)) return nullptr;
  if (!FManager) FManager = MakeObject<TVarcolin, IVarcolin>();
  return FManager.Get();
}

void VARCOLIN_CALL TVarcolin::GetPrograms(IProductCollection** AResult) {
  MakeCollection<TItemProgramCollection>(AResult);
}

void VARCOLIN_CALL TVarcolin::GetUpdates(IProductCollection** AResult) {
  MakeCollection<TItemUpdateCollection>(AResult);
}

TVRCState VARCOLIN_CALL TVarcolin::GetState() { return TLocationUninstall::State(); }

void VARCOLIN_CALL TVarcolin::GetHostEvent(TEventHandler* AResult) {
  if (AResult != nullptr) *AResult = FHostEvent;
}

void VARCOLIN_CALL TVarcolin::SetHostEvent(const TEventHandler* AHandler) {
  FHostEvent = AHandler == nullptr ? TEventHandler{} : *AHandler;
}

void VARCOLIN_CALL TVarcolin::ShowWindowsFeatures() {
  GuardInterface([] { WindowsFeatures::Show(); });
}

void VARCOLIN_CALL TVarcolin::Refresh() {
  GuardInterface([] { TLocationUninstall::Refresh(); });
}

void VARCOLIN_CALL TVarcolin::RefreshARPCache() {
  GuardInterface([this] {
    if (FRefreshARPCache) return;
    auto refresh = std::make_unique<TRefreshARPCache>();
    refresh->Start();
    FRefreshARPCache = std::move(refresh);
  });
}

void VARCOLIN_CALL TVarcolin::Stop() {
  GuardInterface([] { StopActions(TItemProgram::List()); });
  GuardInterface([] { StopActions(TItemUpdate::List()); });
  GuardInterface([] { TLocationUninstall::Cancel(); });
  FRefreshARPCache.reset();  // asks the thread to end and waits for it
  GuardInterface([] { SiblingLoader::SendCommand(u"QuilletHelper", QuilletFinalizeCommand); });
}

bool VARCOLIN_CALL TVarcolin::IsRefreshingARPCache() { return FRefreshARPCache && !FRefreshARPCache->Finished(); }

bool VARCOLIN_CALL TVarcolin::IsDiscovering() { return TLocationUninstall::IsReading(); }

void VARCOLIN_CALL TVarcolin::SetStrings(IStringList* AStrings) {
  GuardInterface([&] { DLLStringsLocalized::SetStrings(AStrings); });
}

void VARCOLIN_CALL TVarcolin::ReadLink(const char16_t* AFileName, const void* AData, std::int64_t ASize,
                                       TOleString* AError, IShellLinkFile** AResult) {
  if (AError != nullptr) *AError = nullptr;
  if (AResult == nullptr) return;
  *AResult = nullptr;
  GuardInterface([&] {
    try {
      const auto* const bytes = static_cast<const std::byte*>(AData);
      // a byte more than any link has is enough for the refusal
      const std::int64_t most = std::int64_t{TShellLinkInfo::LargestFile} + 1;
      const std::int64_t size = bytes == nullptr ? 0 : std::clamp<std::int64_t>(ASize, 0, most);
      *AResult =
          MakeObject<TShellLinkFile, IShellLinkFile>(TextOf(AFileName), std::vector<std::byte>(bytes, bytes + size))
              .Detach();
    } catch (const TShellLinkInfoException& error) {
      if (AError != nullptr) *AError = AllocOleString(error.Message());
    }
  });
}

}  // namespace varcolin
