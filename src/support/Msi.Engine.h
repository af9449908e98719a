// What the Windows Installer knows of products.
#pragma once

#include <string>
#include <string_view>

namespace varcolin {

/// Class operations only.
class TMsiEngine {
 public:
  /// Install folder of the product with this product code; empty when the Windows Installer knows none. The Windows
  /// Installer is not asked yet, so none is known.
  [[nodiscard]] static std::u16string InstallLocation(std::u16string_view AGuid);
};

}  // namespace varcolin
