// What the manifest of a servicing package says.
#pragma once

#include <cstddef>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Types.h"
#include "platform/Xml.h"

namespace varcolin {

/// The parts of a package manifest that describe an update. Texts are as the manifest has them, empty when it has none;
/// where it matters whether an attribute is there at all, its absence is told apart. They live as long as the reader.
struct TManifest {
  std::u16string_view DisplayName;
  std::u16string_view Description;
  std::u16string_view Company;
  std::u16string_view SupportInformation;
  std::optional<std::u16string_view> IdentityName;
  std::u16string_view Version;
  std::u16string_view Language;                        ///< name of a locale, or another word such as "neutral"
  std::optional<std::u16string_view> Identifier;       ///< of the package; its presence marks an update
  std::optional<std::u16string_view> ReleaseTypeName;  ///< see DLLGlobals::DecodeReleaseType
  std::vector<std::u16string_view> ContainedNames;     ///< identity names of the packages that the update contains
};

/// Reads manifests, of which a system has thousands: it keeps the texts of all of them together. One thread at a time.
class TManifestReader {
 public:
  /// AXml outlives the reader.
  explicit TManifestReader(IXml& AXml) noexcept : FXml(AXml) {}

  /// Reads a manifest from its bytes, whatever they are. The error of the parser when they are no XML document, and
  /// AManifest is untouched; a document of another kind gives an empty manifest. The calling thread has joined COM.
  [[nodiscard]] TWinError Read(std::span<const std::byte> AData, TManifest& AManifest);

 private:
  [[nodiscard]] std::optional<std::u16string_view> Attribute(const IXmlCursor& AElement, TXmlName AName);
  [[nodiscard]] std::u16string_view TextOf(const IXmlCursor& AElement, TXmlName AName);
  /// Takes the names from the "update" elements below the package at which the cursor is, and comes back there.
  void ReadContainedNames(IXmlCursor& ACursor, std::vector<std::u16string_view>& ANames);

  IXml& FXml;
  std::pmr::monotonic_buffer_resource FTexts;
  std::u16string FText;  ///< of the attribute that was read last
};

}  // namespace varcolin
