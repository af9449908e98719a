#include "platform/simulated/SimulatedXml.h"

#include <algorithm>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>

#include "platform/simulated/SimulatedCom.h"
#include "support/uText.h"

namespace varcolin {

namespace {

constexpr TWinError ComNotInitialized = 0x800401F0;  // CO_E_NOTINITIALIZED

/// Whether a name of the parser is AName; ASCII, as nearly every name is, is compared without a copy.
bool SameName(std::string_view AParsed, std::u16string_view AName) {
  const auto isSame = [](char AFirst, char16_t ASecond) {
    return static_cast<unsigned char>(AFirst) < 0x80 && static_cast<char16_t>(AFirst) == ASecond;
  };
  return std::ranges::equal(AParsed, AName, isSame) || (AParsed.size() > AName.size() && FromUtf8(AParsed) == AName);
}

class TElement : public IXmlElement {
 public:
  explicit TElement(pugi::xml_node ANode) noexcept : FNode(ANode) {}

  [[nodiscard]] std::u16string Name() const override { return FromUtf8(FNode.name()); }
  [[nodiscard]] bool GetAttribute(std::u16string_view AName, std::u16string& AValue) const override {
    for (const pugi::xml_attribute attribute : FNode.attributes()) {
      if (!SameName(attribute.name(), AName)) continue;
      AValue = FromUtf8(attribute.value());
      return true;
    }
    return false;
  }
  [[nodiscard]] std::unique_ptr<IXmlElement> FirstChild() const override {
    const pugi::xml_node child = FirstElement(FNode.first_child());
    return child ? std::make_unique<TElement>(child) : nullptr;
  }
  [[nodiscard]] bool MoveToNext() override {
    const pugi::xml_node next = FirstElement(FNode.next_sibling());
    if (next) FNode = next;
    return static_cast<bool>(next);
  }
  [[nodiscard]] std::unique_ptr<IXmlElement> FindChild(std::u16string_view AName) const override {
    for (pugi::xml_node node = FNode.first_child(); node; node = node.next_sibling()) {
      // the name alone would do for an instruction too
      if (node.type() == pugi::node_element && SameName(node.name(), AName)) return std::make_unique<TElement>(node);
    }
    return nullptr;
  }

 private:
  static pugi::xml_node FirstElement(pugi::xml_node ANode) {
    while (ANode && ANode.type() != pugi::node_element) ANode = ANode.next_sibling();
    return ANode;
  }

  pugi::xml_node FNode;
};

/// The root element, which keeps the document.
class TRoot final : public TElement {
 public:
  TRoot(std::unique_ptr<pugi::xml_document> ADocument, pugi::xml_node ARoot) noexcept
      : TElement(ARoot), FDocument(std::move(ADocument)) {}

 private:
  std::unique_ptr<pugi::xml_document> FDocument;
};

/// The one element at the top of a document that is nothing but it, instructions and comments; null for any other.
pugi::xml_node OnlyElement(const pugi::xml_document& ADocument) {
  pugi::xml_node element;
  for (const pugi::xml_node node : ADocument) {
    if (node.type() != pugi::node_element || element) return {};
    element = node;
  }
  return element;
}

}  // namespace

TWinError TSimulatedXml::Parse(std::span<const std::byte> AData, std::unique_ptr<IXmlElement>& ARoot) {
  if (!FCom.HasJoined()) return ComNotInitialized;
  // as fragment and with the declaration of a type kept: OnlyElement judges what stands at the top
  constexpr unsigned Options = pugi::parse_default | pugi::parse_fragment | pugi::parse_doctype;
  auto document = std::make_unique<pugi::xml_document>();
  const pugi::xml_parse_result result = document->load_buffer(AData.data(), AData.size(), Options);
  if (result.status == pugi::status_out_of_memory) return WinError::NotEnoughMemory;
  const pugi::xml_node root = result ? OnlyElement(*document) : pugi::xml_node();
  if (!root) return WinError::BadFormat;
  ARoot = std::make_unique<TRoot>(std::move(document), root);
  return WinError::Success;
}

}  // namespace varcolin
