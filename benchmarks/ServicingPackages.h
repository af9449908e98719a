// Servicing packages as a well-kept machine has them, of any number.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace varcolin::benchmarks {

/// Where the packages' keys and manifests lie.
inline constexpr std::u16string_view PackagesKey =
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based Servicing\\Packages";
inline constexpr std::u16string_view PackagesFolder = u"C:\\Windows\\Servicing\\Packages\\";

/// Installed packages: every tenth is an update that contains the nine behind it, which have names of their own and the
/// same article. A manifest has some 5 KB. The same number always gives the same packages.
class TServicingPackages {
 public:
  explicit TServicingPackages(std::size_t ACount) noexcept : FCount(ACount) {}

  [[nodiscard]] std::size_t Count() const noexcept { return FCount; }
  /// Of those, the updates that no other one contains.
  [[nodiscard]] std::size_t UpdateCount() const noexcept { return (FCount + PerUpdate - 1) / PerUpdate; }
  /// The code of a package: its key's name, and its manifest's without the extension.
  [[nodiscard]] std::u16string CodeAt(std::size_t AIndex) const;
  [[nodiscard]] std::string ManifestAt(std::size_t AIndex) const;

 private:
  static constexpr std::size_t PerUpdate = 10;

  [[nodiscard]] static std::string NameAt(std::size_t AIndex);

  std::size_t FCount;
};

}  // namespace varcolin::benchmarks
