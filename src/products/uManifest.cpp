#include "products/uManifest.h"

#include <algorithm>
#include <memory>

#include "support/uText.h"

namespace varcolin {

namespace {

constexpr TXmlName Identity = "assemblyIdentity";
constexpr TXmlName Package = "package";

/// Does something at the first child with a name, when there is one, and comes back.
template <class TAction>
void AtChild(IXmlCursor& ACursor, TXmlName AName, TAction AAction) {
  if (!ACursor.MoveToChild(AName)) return;
  AAction();
  ACursor.MoveToParent();
}

}  // namespace

std::optional<std::u16string_view> TManifestReader::Attribute(const IXmlCursor& AElement, TXmlName AName) {
  if (!AElement.GetAttribute(AName, FText)) return std::nullopt;
  auto* const kept = static_cast<char16_t*>(FTexts.allocate(FText.size() * sizeof(char16_t), alignof(char16_t)));
  std::ranges::copy(FText, kept);
  return std::u16string_view(kept, FText.size());
}

std::u16string_view TManifestReader::TextOf(const IXmlCursor& AElement, TXmlName AName) {
  return Attribute(AElement, AName).value_or(std::u16string_view());
}

void TManifestReader::ReadContainedNames(IXmlCursor& ACursor, std::vector<std::u16string_view>& ANames) {
  if (!ACursor.MoveToFirstChild()) return;
  do {
    if (!SameText(ACursor.Name(), u"update")) continue;
    AtChild(ACursor, Package, [&] {
      AtChild(ACursor, Identity, [&] {
        if (const auto name = Attribute(ACursor, "name")) ANames.push_back(*name);
      });
    });
  } while (ACursor.MoveToNext());
  ACursor.MoveToParent();
}

TWinError TManifestReader::Read(std::span<const std::byte> AData, TManifest& AManifest) {
  std::unique_ptr<IXmlCursor> cursor;
  if (const TWinError error = FXml.Parse(AData, cursor); error != WinError::Success) return error;
  AManifest = {};
  if (cursor->Name() != u"assembly") return WinError::Success;
  AManifest.Description = TextOf(*cursor, "description");
  AManifest.DisplayName = TextOf(*cursor, "displayName");
  AManifest.Company = TextOf(*cursor, "company");
  AManifest.SupportInformation = TextOf(*cursor, "supportInformation");
  AtChild(*cursor, Identity, [&] {
    AManifest.IdentityName = Attribute(*cursor, "name");
    AManifest.Version = TextOf(*cursor, "version");
    AManifest.Language = TextOf(*cursor, "language");
  });
  AtChild(*cursor, Package, [&] {
    AManifest.Identifier = Attribute(*cursor, "identifier");
    AManifest.ReleaseTypeName = Attribute(*cursor, "releaseType");
    ReadContainedNames(*cursor, AManifest.ContainedNames);
  });
  return WinError::Success;
}

}  // namespace varcolin
