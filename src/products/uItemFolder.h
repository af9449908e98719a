// What is known of the executables that belong to programs.
#pragma once

#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>

namespace varcolin {

/// One executable with the shortcut that led to it. Texts are empty until known. Entries are only ever added and live
/// until the library unloads; the reader thread writes them, under the lock.
struct TItemFolder {
  std::u16string FExecutedFile;  ///< full path of the executable
  std::u16string FLinkFile;      ///< full path of the shortcut; empty for an executable that was found directly
  std::u16string FLinkName;      ///< the shortcut's file name without extension, cleaned
  std::u16string FCompanyName;   ///< from here on but for the icon: of the executable's version resource
  std::u16string FProductName;
  std::u16string FProductVersion;  ///< product version, else file version
  std::u16string FIconLocation;    ///< the shortcut's icon file, a comma and a decimal index; empty without an icon
  std::u16string FTranslations;    ///< language of the executable
  bool FResourceReaded = false;    ///< whether the version resource has been read

  // Class operations. Those below take the lock by themselves; it is re-entrant.

  static void Load();
  static void Unload() noexcept;

  /// The lock of the list and its entries: whoever is not the reader thread holds it while he looks at them.
  [[nodiscard]] static std::recursive_mutex& Mutex();
  /// All entries, in the order in which they were found.
  [[nodiscard]] static std::span<const std::unique_ptr<TItemFolder>> Items();
  /// Takes a file that was found, a shortcut (".lnk") or an executable, into the list unless it is there already, and
  /// gives its entry; null when there is no such file. Raises what TShellLinkInfo raises for an unreadable shortcut.
  static const TItemFolder* AddItem(std::u16string_view AFile);
  /// The entry that belongs to a program with this display name and install folder, with its version resource read;
  /// null when there is none. It is the one whose shortcut has the program's cleaned name, else one that lies in the
  /// install folder, else one whose shortcut's name is a part of the program's name.
  [[nodiscard]] static const TItemFolder* ItemByName(std::u16string_view ADisplayName,
                                                     std::u16string_view AInstallLocation);
};

}  // namespace varcolin
