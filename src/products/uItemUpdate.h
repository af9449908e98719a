// The record of an installed update, and the process-wide list of updates.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "products/uIconLists.h"
#include "products/uItemProduct.h"
#include "products/uManifest.h"
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
  /// The first update with this package code, without regard to case; null when there is none.
  [[nodiscard]] static std::shared_ptr<TItemUpdate> ItemByCode(std::u16string_view ACode,
                                                               TTypeUninstallLocation ALocation) {
    return List().FindByCode(ACode, ALocation);
  }

  explicit TItemUpdate(TTypeUninstallLocation ALoc);
  ~TItemUpdate() override { StopActionThread(); }

  /// The identifier that a host sees: the update's own, or else its GUID.
  [[nodiscard]] const std::u16string& UpdateIdentifier() const noexcept {
    return FUpdateID.empty() ? FGUID : FUpdateID;
  }

  [[nodiscard]] std::u16string GetActionCommand(TPossibleActions AAction) const override;

  /// What the package's manifest says, while the fast information is read for the first time; component updates only.
  const TManifest* FManifest = nullptr;

  // Identity: as that of every product.
  std::u16string FPackageCode;  ///< servicing package; empty for registry updates

  // Guarded by the item lock once the record is published.
  std::vector<std::u16string> FFileNames;  ///< paths of the package's manifest
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
  void ReadPackage(const TKeyStore& AKeys);
  void NameItself();

  static std::unique_ptr<TState> FState;
};

}  // namespace varcolin
