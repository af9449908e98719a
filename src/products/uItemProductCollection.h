// The collections that the host walks.
#pragma once

#include "products/uIconLists.h"
#include "products/uInterfaceGuard.h"
#include "products/uItemProductIntf.h"
#include "products/uItemProgram.h"
#include "products/uItemUpdate.h"
#include "support/uInterfacedObject.h"

namespace varcolin {

/// A view over the global list of one class of product. It owns nothing; any thread.
template <class TItem, std::uint32_t AdvertisedProperties>
class TProductCollection final : public TInterfacedObject<IProductCollection> {
 public:
  std::uint32_t VARCOLIN_CALL GetSupportedProperties() override { return AdvertisedProperties; }
  std::int32_t VARCOLIN_CALL GetCount() override { return static_cast<std::int32_t>(TItem::List().Count()); }
  void VARCOLIN_CALL GetItem(std::int32_t AIndex, IProduct** AResult) override {
    if (AResult == nullptr) return;
    *AResult = nullptr;
    if (AIndex < 0) return;
    GuardInterface([&] {
      if (auto item = TItem::List().At(static_cast<std::size_t>(AIndex))) {
        *AResult = MakeObject<TItemProductIntf, IProduct>(std::move(item)).Detach();
      }
    });
  }
  TNativeUInt VARCOLIN_CALL GetIconListSmall() override { return TItem::Icons().Small(); }
  TNativeUInt VARCOLIN_CALL GetIconListLarge() override { return TItem::Icons().Large(); }
  void VARCOLIN_CALL Lock() override { TItem::List().Lock(); }
  void VARCOLIN_CALL Unlock() override { TItem::List().Unlock(); }
};

/// Programs advertise the numbers 0 to 16 and 18 to 21, updates 0 to 14 and 22 to 24.
using TItemProgramCollection = TProductCollection<TItemProgram, 0x3DFFFF>;
using TItemUpdateCollection = TProductCollection<TItemUpdate, 0x1C07FFF>;

}  // namespace varcolin
