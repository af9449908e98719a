// The record of an installed program, and the process-wide list of programs.
#pragma once

#include <memory>

#include "products/uIconLists.h"
#include "products/uItemProduct.h"
#include "products/uProductList.h"

namespace varcolin {

class IRegistry;
class IFiles;
struct TItemFolder;

/// Adds registration values, the shell's usage records, a rating and the worked-out details to a product.
class TItemProgram final : public TItemProduct {
 public:
  /// Creates the program list and its image lists with the rating icons (0 to 2) and the default icon (3).
  static void Load(IRegistry& ARegistry, IFiles& AFiles, IIcons& AIcons);
  static void Unload() noexcept;
  /// The list of programs; its lock also guards what the details phase writes.
  [[nodiscard]] static TProductList<TItemProgram>& List() noexcept;
  /// The programs' image lists.
  [[nodiscard]] static TIconLists& Icons() noexcept;
  /// Index of the default icon; higher indices are programs' own icons.
  static constexpr std::int32_t DefaultIcon = 3;

  explicit TItemProgram(TTypeUninstallLocation ALoc);
  ~TItemProgram() override { StopActionThread(); }

  /// As the base; a program that is taken off the list leaves the list of programs. Its registry entry stays.
  bool RunAction(TPossibleActions& AAction, TNativeUInt& AWndHandle) override;

  // Guarded by the item lock once the record is published.
  std::u16string FProductID;
  std::u16string FRegisteredOwner;
  std::u16string FRegisteredCompany;
  TSoftwareRating FSoftwareRating = TSoftwareRating::stUnknown;
  std::u16string FSlowExePath;           ///< main executable, as the shell's cache names it
  TDateTime FLastUsedDate = 0;           ///< 0 when unknown
  std::int32_t FUsedFrequencyCount = 0;  ///< how often it was used; 0 when unknown

 protected:
  void DoReadSlowInfo() override;
  void ReadRegistryValues(const TProductKey& AKey) override;
  void ReadRegistryCommands(const TProductKey& AKey) override;

 private:
  struct TState;

  void ReadShellCache(std::u16string_view AEntry);
  void FindInstallFolder();
  void FillFromExecutable(const TItemFolder* AFolder);
  void MeasureSize();
  void Rate(const TItemFolder* AFolder);
  void FindIcon(const TItemFolder* AFolder);
  void FindLastUse(const TItemFolder* AFolder);
  /// Runs AWrite while the host can neither walk the list nor read this record.
  template <class TWrite>
  void WriteLocked(TWrite AWrite);

  static std::unique_ptr<TState> FState;
};

}  // namespace varcolin
