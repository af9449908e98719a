#include "products/uManifest.h"

#include <memory>
#include <utility>

#include "platform/Xml.h"
#include "support/uText.h"

namespace varcolin {

namespace {

using namespace std::string_view_literals;

constexpr std::u16string_view Identity = u"assemblyIdentity";
constexpr std::u16string_view Package = u"package";

std::u16string TextOf(const IXmlElement& AElement, std::u16string_view AName) {
  std::u16string text;
  static_cast<void>(AElement.GetAttribute(AName, text));
  return text;
}

std::optional<std::u16string> TextIfAny(const IXmlElement& AElement, std::u16string_view AName) {
  std::u16string text;
  if (!AElement.GetAttribute(AName, text)) return std::nullopt;
  return text;
}

/// The package that one "update" element brings with it.
std::optional<std::u16string> ContainedName(const IXmlElement& AUpdate) {
  const auto package = AUpdate.FindChild(Package);
  const auto identity = package ? package->FindChild(Identity) : nullptr;
  return identity ? TextIfAny(*identity, u"name"sv) : std::nullopt;
}

}  // namespace

TWinError ReadManifest(IXml& AXml, std::span<const std::byte> AData, TManifest& AManifest) {
  std::unique_ptr<IXmlElement> assembly;
  if (const TWinError error = AXml.Parse(AData, assembly); error != WinError::Success) return error;
  TManifest manifest;
  if (assembly->Name() == u"assembly"sv) {
    manifest.DisplayName = TextOf(*assembly, u"displayName"sv);
    manifest.Description = TextOf(*assembly, u"description"sv);
    manifest.Company = TextOf(*assembly, u"company"sv);
    manifest.SupportInformation = TextOf(*assembly, u"supportInformation"sv);
    if (const auto identity = assembly->FindChild(Identity)) {
      manifest.IdentityName = TextIfAny(*identity, u"name"sv);
      manifest.Version = TextOf(*identity, u"version"sv);
      manifest.Language = TextOf(*identity, u"language"sv);
    }
    if (const auto package = assembly->FindChild(Package)) {
      manifest.Identifier = TextIfAny(*package, u"identifier"sv);
      manifest.ReleaseTypeName = TextIfAny(*package, u"releaseType"sv);
      const auto child = package->FirstChild();
      for (bool more = child != nullptr; more; more = child->MoveToNext()) {
        if (!SameText(child->Name(), u"update"sv)) continue;
        if (auto name = ContainedName(*child)) manifest.ContainedNames.push_back(*std::move(name));
      }
    }
  }
  AManifest = std::move(manifest);
  return WinError::Success;
}

}  // namespace varcolin
