#include "platform/simulated/SimulatedXml.h"

#include <array>
#include <pugixml.hpp>
#include <string>
#include <utility>

#include "platform/simulated/SimulatedCom.h"
#include "support/uText.h"

namespace varcolin {

namespace {

constexpr TWinError ComNotInitialized = 0x800401F0;  // CO_E_NOTINITIALIZED

/// A name as the parser takes it. Names of elements are asked for so often that the usual ones take no memory.
class TParsedName {
 public:
  explicit TParsedName(std::u16string_view AName) {
    char* end = FBuffer.data();
    for (const char16_t unit : AName) {
      if (unit >= 0x80 || end == &FBuffer.back()) {
        FLong = ToUtf8(AName);
        return;
      }
      *end++ = static_cast<char>(unit);
    }
    *end = '\0';
  }

  [[nodiscard]] const char* Text() const noexcept { return FLong.empty() ? FBuffer.data() : FLong.c_str(); }

 private:
  std::array<char, 32> FBuffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): as far as it counts, it is written
  std::string FLong;
};

class TElement : public IXmlElement {
 public:
  explicit TElement(pugi::xml_node ANode) noexcept : FNode(ANode) {}

  [[nodiscard]] std::u16string Name() const override { return FromUtf8(FNode.name()); }
  [[nodiscard]] bool GetAttribute(std::u16string_view AName, std::u16string& AValue) const override {
    const pugi::xml_attribute attribute = FNode.attribute(TParsedName(AName).Text());
    if (attribute) AValue = FromUtf8(attribute.value());
    return static_cast<bool>(attribute);
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
    const TParsedName name(AName);
    pugi::xml_node node = FNode.child(name.Text());
    // the name alone would do for an instruction too
    while (node && node.type() != pugi::node_element) node = node.next_sibling(name.Text());
    return node ? std::make_unique<TElement>(node) : nullptr;
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
