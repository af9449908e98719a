// The record of an installed update, and the process-wide list of updates.
#pragma once

#include <memory>
#include <string>

#include "products/uIconLists.h"
#include "products/uItemProduct.h"
#include "products/uProductList.h"

namespace varcolin {

/// Adds classification, parent and identifiers to a product.
class TItemUpdate final : public TItemProduct {
 public:
  /// Creates the update list and its image lists with the default icon (0).
  static void Load(IIcons& AIcons);
  static void Unload() noexcept;
  [[nodiscard]] static TProductList<TItemUpdate>& List() noexcept;
  [[nodiscard]] static TIconLists& Icons() noexcept;

  explicit TItemUpdate(TTypeUninstallLocation ALoc);
  ~TItemUpdate() override { StopActionThread(); }

  /// The identifier that a host sees: the update's own, or else its GUID.
  [[nodiscard]] const std::u16string& UpdateIdentifier() const noexcept {
    return FUpdateID.empty() ? FGUID : FUpdateID;
  }

  // Guarded by the item lock once the record is published.
  std::u16string FPackageCode;  ///< servicing package; empty for registry updates
  TReleaseType FReleaseType = TReleaseType::rtNone;
  std::u16string FParentKeyName;      ///< uninstall key name of the program that the update belongs to
  std::u16string FParentDisplayName;  ///< that program's display name, or the Windows version
  std::u16string FUpdateID;
  std::u16string FKBID;  ///< knowledge-base article

 protected:
  void DoReadFastInfo(const TKeyStore& AKeys) override;
  void DoReadSlowInfo() override;

 private:
  struct TState;
  void NameItself();

  static std::unique_ptr<TState> FState;
};

}  // namespace varcolin
