// The location that finds the component-based-servicing packages of Windows Vista and later.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "locations/uLocationUninstall.h"
#include "platform/Files.h"
#include "platform/Registry.h"
#include "platform/Sync.h"
#include "products/uManifest.h"

namespace varcolin {

class IXml;

/// Reads the manifests of the servicing folder and the packages' keys, and publishes the installed packages that are
/// updates and that no other update contains. A package's code is its manifest's file name and its key's name.
class TLocationVistaUpdate final : public TLocationUninstall {
 public:
  /// What the location reads from. The facilities outlive the module.
  static void Load(IRegistry& ARegistry, IFiles& AFiles, ICom& ACom, IXml& AXml) noexcept;
  static void Unload() noexcept;

  /// Arms the change watch. Raises EOSError when its event is refused.
  TLocationVistaUpdate();

  void ReadLocation() override;
  [[nodiscard]] bool CheckChanges() override;

 private:
  /// One package found during one read.
  struct TTemporaryInfo {
    std::u16string FCode;
    std::vector<std::u16string> FFileNames;
    std::vector<std::u16string> FRegistryKeys;
    bool FIsCanUninstall = false;
    TManifest FManifest;  ///< its texts live during the read
  };

  void ArmWatch();
  /// Fills FUpdateList with the updates that no other one contains, in the order of the folder.
  void ReadPackages(TManifestReader& AManifests);
  /// The packages of the folder that are installed, in its order, as far as their keys below APackages tell of them.
  [[nodiscard]] std::deque<TTemporaryInfo> FindInstalled(const TRegistryKey& APackages) const;
  /// Reads the manifest of a package; false when it cannot be read or is none of an update. ABuffer is memory to be
  /// used again.
  [[nodiscard]] bool ReadUpdate(std::u16string_view ACode, TManifestReader& AManifests, std::vector<std::byte>& ABuffer,
                                TManifest& AManifest) const;
  /// Whether a package is installed, by its key below APackages; ACanUninstall is set when it is.
  [[nodiscard]] static bool IsPackageInstalled(const TRegistryKey& APackages, std::u16string_view ACode,
                                               bool& ACanUninstall);
  /// The manifest of a package.
  [[nodiscard]] std::u16string PathOf(std::u16string_view ACode) const;
  void Publish();
  void Add(TTemporaryInfo& AInfo);

  static inline IRegistry* FRegistry = nullptr;
  static inline IFiles* FFiles = nullptr;
  static inline ICom* FCom = nullptr;
  static inline IXml* FXml = nullptr;
  const std::u16string FPackagesFolder;  ///< with a trailing backslash
  std::deque<TTemporaryInfo> FUpdateList;
  TFolderWatch FWaitHandle;
  TEvent FRegWaitEvent;
  TRegistryKey FRegWaitKey;  ///< after the event: it is closed before it
};

}  // namespace varcolin
