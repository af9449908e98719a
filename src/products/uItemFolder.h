// What is known of the executables that belong to programs.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace varcolin {

/// One executable with the shortcut that led to it. Texts are empty until known.
struct TItemFolder {
  std::u16string FExecutedFile;  ///< full path of the executable
  std::u16string FLinkFile;      ///< full path of the shortcut
  std::u16string FLinkName;      ///< the shortcut's cleaned name
  std::u16string FCompanyName;
  std::u16string FProductName;
  std::u16string FProductVersion;
  std::u16string FIconLocation;  ///< file, a comma and an icon index
  std::u16string FTranslations;  ///< language of the executable

  /// The entry that belongs to a program with this display name and install folder; null when there is none. Nothing
  /// gathers executables yet, so there is none.
  [[nodiscard]] static std::shared_ptr<const TItemFolder> ItemByName(std::u16string_view ADisplayName,
                                                                     std::u16string_view AInstallLocation);
};

}  // namespace varcolin
