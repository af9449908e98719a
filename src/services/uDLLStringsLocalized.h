// The texts that the host translates.
#pragma once

#include <string>
#include <string_view>

#include "intf/intf_Base.h"

namespace varcolin {

/// The nine localisable format strings, each with one %s.
enum class ELocalizedString {
  S_SOFTWARE_UPDATE,
  S_UPDATE,
  S_UPDATE_ROLLUP,
  S_SERVICE_PACK,
  S_CRITICAL_UPDATE,
  S_SECURITY_UPDATE,
  S_HOTFIX,
  S_SOFTWARE_PATCH,
  S_BRISMERE_SESSION_NAME,
};

/// Class operations only. SetStrings is not to run beside the readers.
class DLLStringsLocalized {
 public:
  /// Sets the English defaults.
  static void Load();
  static void Unload() noexcept;

  /// Takes lines of the form key=value over; a key that is missing or empty keeps its text, null changes nothing.
  static void SetStrings(IStringList* AStrings);
  [[nodiscard]] static const std::u16string& Text(ELocalizedString AKey) noexcept;
};

}  // namespace varcolin
