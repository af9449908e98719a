// The location that finds programs and updates in the registry.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "locations/uLocationUninstall.h"
#include "locations/uRegistryWatch.h"
#include "locations/uTemporaryInfo.h"
#include "registry/uKeySnapshot.h"

namespace varcolin {

/// Reads the uninstall keys, the Windows Installer's product and patch keys and the hotfix trees, in both registry
/// views, and publishes what they name as programs and updates.
class TLocationRegistryUninstall final : public TLocationUninstall {
 public:
  /// The registry that every location reads.
  static void Load(IRegistry& ARegistry) noexcept;
  static void Unload() noexcept;

  /// Arms the change watch.
  TLocationRegistryUninstall();

  void ReadLocation() override;
  [[nodiscard]] bool CheckChanges() override;

 private:
  /// A key's place: root, path without a leading backslash, and the view flag of the scan.
  struct TPlace {
    ERegistryRoot Root;
    std::uint32_t View;
    std::u16string Path;

    [[nodiscard]] TPlace Below(std::u16string_view AName) const;
    [[nodiscard]] std::u16string Text() const;
  };

  void ReadEverything(TKeyCache& AKeys);
  void ReadUninstallKeys(ERegistryRoot ARoot, std::uint32_t AView, TKeyCache& AKeys);
  void ReadVisibleEntry(const TPlace& APlace, std::u16string_view AName, std::shared_ptr<const TKeySnapshot> AValues);
  void ReadSystemComponent(const TPlace& APlace, std::u16string_view AName,
                           std::shared_ptr<const TKeySnapshot> AValues);
  void ReadInstallerKeys(ERegistryRoot ARoot, std::uint32_t AView, std::u16string_view AUserSid);
  void ReadInstallerPath(const TPlace& APath);
  void ReadInstallerProduct(const TPlace& AProduct, std::u16string_view AName, const std::u16string& AGuid);
  void ReadPatches(const TPlace& AProduct, const TTemporaryInfo& AInfo);
  void ReadPatch(const TPlace& APatch, std::u16string_view AName, const TTemporaryInfo& AInfo);
  void ReadHotfixTree(const TPlace& AStart);
  void ReadHotfix(const TPlace& APlace, const TKeySnapshot& AValues);
  void MergeUpdatesOverPrograms();
  void PublishPrograms();
  void PublishUpdates();

  [[nodiscard]] static std::u16string DisplayNameOf(const TKeySnapshot& AValues);
  [[nodiscard]] static std::u16string GuidOf(const TKeySnapshot& AValues, std::u16string_view AKeyName);
  /// Fills what is still empty in a record from a key; false when the record then has neither name nor GUID.
  [[nodiscard]] static bool ReadEntry(TTemporaryInfo& AInfo, const TPlace& APlace, std::u16string_view AName,
                                      const std::shared_ptr<const TKeySnapshot>& AValues);
  [[nodiscard]] std::vector<std::u16string> SubKeyNames(const TPlace& APlace);
  [[nodiscard]] std::shared_ptr<const TKeySnapshot> ReadKey(const TPlace& APlace);
  /// Makes an update of a program record: a clone goes to the updates, the record itself is freed.
  [[nodiscard]] TTemporaryInfo& MoveToUpdates(TTemporaryInfo& AProgram);
  /// Fills a new product from a record, whose texts and keys it takes over.
  template <class TItem>
  static void Fill(TItem& AItem, std::u16string_view AAddLine, TTemporaryInfo& AInfo);

  static inline IRegistry* FRegistry = nullptr;

  TRegistryWatch FWatch;
  TTemporaryList FProgramList;
  TTemporaryList FUpdateList;
  /// GUIDs of system components that matched no program; kept for as long as the location lives.
  std::set<std::u16string, TTextLess> FGUIDSystemList;
};

}  // namespace varcolin
