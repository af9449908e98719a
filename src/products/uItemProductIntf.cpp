#include "products/uItemProductIntf.h"

#include <new>

#include "platform/Modules.h"
#include "products/uInterfaceGuard.h"
#include "products/uItemProgram.h"
#include "products/uItemUpdate.h"
#include "support/uText.h"

namespace varcolin {

namespace {

void Store(TOleVariant& AResult, const std::u16string& AText) {
  const TOleString copy = AllocOleString(AText);
  if (copy == nullptr) throw std::bad_alloc();
  AResult.Type = EVariantType::String;
  AResult.String = copy;
}

void StoreDate(TOleVariant& AResult, TDateTime ADate) {
  AResult.Type = EVariantType::Date;
  AResult.Date = ADate;
}

void StoreInt64(TOleVariant& AResult, std::int64_t ANumber) {
  AResult.Type = EVariantType::Int64;
  AResult.Int64 = ANumber;
}

template <class T>
void StoreInt32(TOleVariant& AResult, T ANumber) {
  AResult.Type = EVariantType::Int32;
  AResult.Int32 = static_cast<std::int32_t>(ANumber);
}

/// Usage by count; the count is compared without its sign.
TUsedType UsageOf(std::int32_t ACount) {
  constexpr std::uint32_t RarelyBelow = 5;
  constexpr std::uint32_t OccasionallyUpTo = 10;
  const auto count = static_cast<std::uint32_t>(ACount);
  if (count < RarelyBelow) return TUsedType::utRarely;
  return count <= OccasionallyUpTo ? TUsedType::utOccasionaly : TUsedType::utFrequently;
}

/// The text properties that every product serves.
std::u16string TItemProduct::*CommonText(TPropertyID AID) {
  switch (AID) {
    case TPropertyID::DisplayName:
      return &TItemProduct::FDisplayName;
    case TPropertyID::DisplayVersion:
      return &TItemProduct::FDisplayVersion;
    case TPropertyID::Publisher:
      return &TItemProduct::FPublisher;
    case TPropertyID::InstallLocation:
      return &TItemProduct::FInstallLocation;
    case TPropertyID::InstallSource:
      return &TItemProduct::FInstallSource;
    case TPropertyID::Contact:
      return &TItemProduct::FContact;
    case TPropertyID::Comments:
      return &TItemProduct::FComments;
    case TPropertyID::ReadMeLink:
      return &TItemProduct::FURLReadMe;
    case TPropertyID::HelpLink:
      return &TItemProduct::FURLHelpLink;
    case TPropertyID::SupportLink:
      return &TItemProduct::FURLSupport;
    case TPropertyID::SupportTelephone:
      return &TItemProduct::FPhoneSupport;
    case TPropertyID::UpdateInfoLink:
      return &TItemProduct::FURLUpdateInfo;
    case TPropertyID::Language:
      return &TItemProduct::FLanguage;
    default:
      return nullptr;
  }
}

void ServeProgram(const TItemProgram& AProgram, TPropertyID AID, TOleVariant& AResult) {
  switch (AID) {
    case TPropertyID::RegisteredOwner:
      return Store(AResult, AProgram.FRegisteredOwner);
    case TPropertyID::RegisteredCompany:
      return Store(AResult, AProgram.FRegisteredCompany);
    case TPropertyID::Guid:
      return Store(AResult, AProgram.FGUID);
    case TPropertyID::ProductID:
      return Store(AResult, AProgram.FProductID);
    case TPropertyID::LastUsedDate:
      return StoreDate(AResult, AProgram.FLastUsedDate);
    case TPropertyID::Usage:
      return StoreInt32(AResult, UsageOf(AProgram.FUsedFrequencyCount));
    case TPropertyID::Rating:
      return StoreInt32(AResult, AProgram.FSoftwareRating);
    default:
      return;
  }
}

void ServeUpdate(const TItemUpdate& AUpdate, TPropertyID AID, TOleVariant& AResult) {
  switch (AID) {
    case TPropertyID::UpdateID:
      return Store(AResult, AUpdate.UpdateIdentifier());
    case TPropertyID::ReleaseType:
      return StoreInt32(AResult, AUpdate.FReleaseType);
    case TPropertyID::ParentDisplayName:
      return Store(AResult, AUpdate.FParentDisplayName);
    default:
      return;
  }
}

}  // namespace

void TItemProductIntf::Load(IModules& AModules) noexcept { FModules = &AModules; }

void TItemProductIntf::Unload() noexcept { FModules = nullptr; }

void VARCOLIN_CALL TItemProductIntf::GetProperty(std::int32_t AID, TOleVariant* AResult) {
  if (AResult == nullptr) return;
  *AResult = TOleVariant{};
  AResult->Type = EVariantType::Null;
  GuardInterface([&] {
    const auto product = FProduct.lock();
    if (!product) return;
    const std::lock_guard lock(product->ItemLock());
    const auto id = static_cast<TPropertyID>(AID);
    if (const auto text = CommonText(id)) {
      Store(*AResult, (*product).*text);
    } else if (id == TPropertyID::InstallDate) {
      StoreDate(*AResult, product->FInstallDate);
    } else if (id == TPropertyID::EstimatedSize) {
      StoreInt64(*AResult, product->FEstimatedSize);
    } else if (const auto* program = dynamic_cast<const TItemProgram*>(product.get())) {
      ServeProgram(*program, id, *AResult);
    } else if (const auto* update = dynamic_cast<const TItemUpdate*>(product.get())) {
      ServeUpdate(*update, id, *AResult);
    }
  });
}

std::int32_t VARCOLIN_CALL TItemProductIntf::GetIconIndex() {
  std::int32_t index = -1;
  GuardInterface([&] {
    if (const auto product = FProduct.lock()) {
      const std::lock_guard lock(product->ItemLock());
      index = product->FIconIndex;
    }
  });
  return index;
}

TPossibleActionsSet VARCOLIN_CALL TItemProductIntf::GetPossibleActions() {
  TPossibleActionsSet actions = 0;
  GuardInterface([&] {
    if (const auto product = FProduct.lock()) {
      const std::lock_guard lock(product->ItemLock());
      actions = product->FPossibleActions;
    }
  });
  return actions;
}

bool VARCOLIN_CALL TItemProductIntf::IsChanged() {
  const auto product = FProduct.lock();
  return product && product->TakeChanged();
}

bool VARCOLIN_CALL TItemProductIntf::RunAction(TPossibleActions* AAction, TNativeUInt* AWndHandle) {
  bool idle = true;
  if (AAction == nullptr || AWndHandle == nullptr) return idle;
  GuardInterface([&] {
    if (const auto product = FProduct.lock()) idle = product->RunAction(*AAction, *AWndHandle);
  });
  return idle;
}

void VARCOLIN_CALL TItemProductIntf::CreateForceRemove(IForceRemove** AResult) {
  if (AResult != nullptr) *AResult = nullptr;
}

bool VARCOLIN_CALL TItemProductIntf::IsNotHost() {
  bool isNotHost = true;
  GuardInterface([&] {
    const auto product = FProduct.lock();
    if (!product) return;
    std::u16string host;
    if (FModules->GetHostPath(host) != WinError::Success) return;
    const std::lock_guard lock(product->ItemLock());
    isNotHost = FindText(product->FInstallLocation, host) == std::u16string_view::npos;
  });
  return isNotHost;
}

void VARCOLIN_CALL TItemProductIntf::GetActionCommand(TPossibleActions AAction, TOleString* AResult) {
  if (AResult == nullptr) return;
  *AResult = nullptr;
  GuardInterface([&] {
    const auto product = FProduct.lock();
    if (!product) return;
    const std::lock_guard lock(product->ItemLock());
    *AResult = AllocOleString(product->GetActionCommand(AAction));
  });
}

bool VARCOLIN_CALL TItemProductIntf::IsUserCommand() {
  bool isUsers = true;
  GuardInterface([&] {
    const auto product = FProduct.lock();
    if (!product) return;
    const std::lock_guard lock(product->ItemLock());
    isUsers = product->IsUserCommand();
  });
  return isUsers;
}

}  // namespace varcolin
