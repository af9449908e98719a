// Path texts as the Windows file functions take them: from the caller's spelling to drive and components.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Types.h"

namespace varcolin {

/// A path without any choice left: drive letter and components.
struct TResolvedPath {
  char16_t Drive = u'C';  ///< upper case
  std::vector<std::u16string> Parts;
  bool TrailingBackslash = false;

  /// "C:\Windows\x"; "C:\" for the root.
  [[nodiscard]] std::u16string Text() const;
};

/// Resolves a path against the current folder (absolute, "C:\…") as Windows does: forward slashes, repeated
/// delimiters, "." and "..", drive-relative forms, blanks and dots at the end of names; "\\?\" switches all that off.
/// AWildcards: the last component may have * and ?.
/// PathNotFound for an empty or overlong path, InvalidName for characters that no name may have (NUL among them); 53
/// (network path not found) for a network path, as the machine has no network.
[[nodiscard]] TWinError ResolvePath(std::u16string_view APath, std::u16string_view ACurrentFolder, bool AWildcards,
                                    TResolvedPath& AResult);

/// Whether a text can be the name of a file as it is stored on a drive.
[[nodiscard]] bool IsFileName(std::u16string_view AName) noexcept;

/// Whether a name matches a search pattern (* and ?) by the rules of FindFirstFile, without regard to case. The time
/// is bounded by the product of the two lengths.
[[nodiscard]] bool MatchesPattern(std::u16string_view APattern, std::u16string_view AName);

/// The redirection of the system folder for 32-bit processes on 64-bit Windows.
class TRedirector {
 public:
  TRedirector() = default;
  /// AWindowsFolder: "C:\Windows". AHasSysnative: the alias for the real folder exists (Windows Vista and later).
  TRedirector(std::u16string_view AWindowsFolder, bool AHasSysnative);

  /// Replaces the redirected part of a path.
  void Redirect(TResolvedPath& APath) const;

 private:
  [[nodiscard]] bool IsException(const TResolvedPath& APath, std::size_t AFrom) const;

  TResolvedPath FWindows;
  bool FHasSysnative = false;
};

}  // namespace varcolin
