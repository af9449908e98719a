// Uninstall keys as a well-used machine has them, of any number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"

namespace varcolin::benchmarks {

inline constexpr std::u16string_view UninstallPath = u"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

/// A value of an uninstall key: a text, or a number when the type is Dword.
struct TUninstallValue {
  std::u16string_view Name;
  std::uint32_t Type;
  std::u16string Text;
  std::uint32_t Number = 0;
};

/// An uninstall key of the machine in one of its views, or of the user.
struct TUninstallKey {
  ERegistryRoot Root;
  std::uint32_t View;  ///< KeyAccess::Wow64_64Key or Wow64_32Key
  std::u16string Name;
  std::vector<TUninstallValue> Values;
};

/// The keys of a number of programs, all with different names: those of the machine in both views and of the user,
/// those of the Windows Installer and of others. Each has about a dozen values. One system component, which no list
/// shows, comes with every 25 programs. The same number always gives the same keys.
class TUninstallKeys {
 public:
  explicit TUninstallKeys(std::size_t APrograms) noexcept : FPrograms(APrograms) {}

  [[nodiscard]] std::size_t Count() const noexcept { return FPrograms + FPrograms / ProgramsPerComponent; }
  [[nodiscard]] TUninstallKey At(std::size_t AIndex) const;

 private:
  static constexpr std::size_t ProgramsPerComponent = 25;

  std::size_t FPrograms;
};

/// Writes the keys into a registry. Raises EOSError when it refuses one.
void WriteUninstallKeys(IWritableRegistry& ARegistry, const TUninstallKeys& AKeys);

/// The keys as the registry editor exports them: UTF-16 with a byte-order mark.
[[nodiscard]] std::u16string ExportOf(const TUninstallKeys& AKeys);

}  // namespace varcolin::benchmarks
