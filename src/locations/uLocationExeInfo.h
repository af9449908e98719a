// The location that gathers the executables and shortcuts that the user has.
#pragma once

#include <string>
#include <string_view>

#include "locations/uLocationUninstall.h"
#include "platform/Registry.h"

namespace varcolin {

class IFiles;

/// It finds no programs of its own and never reports changes: what it finds goes to the program folders (TItemFolder),
/// where programs look for their details.
class TLocationExeInfo final : public TLocationUninstall {
 public:
  /// The facilities outlive the location.
  TLocationExeInfo(IRegistry& ARegistry, IFiles& AFiles) noexcept
      : TLocationUninstall(TTypeUninstallLocation::ulExeInfo), FRegistry(ARegistry), FFiles(AFiles) {}

  /// Passes on the shortcuts of the start menu, the programs that start at logon, and those in the shell's usage
  /// records. A file that cannot be read is noted in the log and hides no other.
  void ReadLocation() override;
  [[nodiscard]] bool CheckChanges() override { return false; }

  /// The path in the name of a usage record, whose letters may be scrambled; empty when the record is of another kind.
  [[nodiscard]] static std::u16string UsedPath(std::u16string_view AName, bool AIsScrambled);

 private:
  void ReadStartMenu();
  void ReadRunKeys();
  void ReadUsageRecords();
  /// Walks a folder, which has a trailing backslash, with all its subfolders.
  void ReadFolder(std::u16string AFolder);
  void ReadRunKey(ERegistryRoot ARoot, std::uint32_t AAccess);
  static void PassOn(std::u16string_view AFile);

  IRegistry& FRegistry;
  IFiles& FFiles;
};

}  // namespace varcolin
