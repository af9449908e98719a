// What the manifest of a servicing package says.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/Types.h"

namespace varcolin {

class IXml;

/// The parts of a package manifest that describe an update. Texts are as the manifest has them, empty when it has none;
/// where it matters whether an attribute is there at all, its absence is told apart.
struct TManifest {
  std::u16string DisplayName;
  std::u16string Description;
  std::u16string Company;
  std::u16string SupportInformation;
  std::optional<std::u16string> IdentityName;
  std::u16string Version;
  std::u16string Language;                        ///< name of a locale, or another word such as "neutral"
  std::optional<std::u16string> Identifier;       ///< of the package; its presence marks an update
  std::optional<std::u16string> ReleaseTypeName;  ///< see DLLGlobals::DecodeReleaseType
  std::vector<std::u16string> ContainedNames;     ///< identity names of the packages that the update contains
};

/// Reads a manifest from its bytes, whatever they are. The error of the parser when they are no XML document; a
/// document of another kind gives an empty manifest. The calling thread has joined COM.
[[nodiscard]] TWinError ReadManifest(IXml& AXml, std::span<const std::byte> AData, TManifest& AManifest);

}  // namespace varcolin
