// What the host sees of a product.
#pragma once

#include <memory>

#include "intf/intf_Varcolin.h"
#include "products/uItemProduct.h"
#include "support/uInterfacedObject.h"

namespace varcolin {

class IModules;

/// IProduct and IProductCommands over a record that a global list owns. When the record is destroyed the wrapper is one
/// without a product, so late calls are harmless on any thread.
class TItemProductIntf final : public TInterfacedObject<IProduct, IProductCommands> {
 public:
  static void Load(IModules& AModules) noexcept;
  static void Unload() noexcept;

  explicit TItemProductIntf(std::weak_ptr<TItemProduct> AProduct) : FProduct(std::move(AProduct)) {}

  void VARCOLIN_CALL GetProperty(std::int32_t AID, TOleVariant* AResult) override;
  std::int32_t VARCOLIN_CALL GetIconIndex() override;
  TPossibleActionsSet VARCOLIN_CALL GetPossibleActions() override;
  bool VARCOLIN_CALL IsChanged() override;
  bool VARCOLIN_CALL RunAction(TPossibleActions* AAction, TNativeUInt* AWndHandle) override;
  void VARCOLIN_CALL CreateForceRemove(IForceRemove** AResult) override;
  bool VARCOLIN_CALL IsNotHost() override;
  void VARCOLIN_CALL GetActionCommand(TPossibleActions AAction, TOleString* AResult) override;
  bool VARCOLIN_CALL IsUserCommand() override;

 private:
  static inline IModules* FModules = nullptr;
  std::weak_ptr<TItemProduct> FProduct;
};

}  // namespace varcolin
