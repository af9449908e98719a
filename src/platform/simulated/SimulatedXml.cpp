#include "platform/simulated/SimulatedXml.h"

#include <pugixml.hpp>
#include <utility>

#include "platform/simulated/SimulatedCom.h"
#include "support/uText.h"

namespace varcolin {

namespace {

constexpr TWinError ComNotInitialized = 0x800401F0;  // CO_E_NOTINITIALIZED

class TCursor final : public IXmlCursor {
 public:
  /// As the parser's own function; the cursor is nowhere until it is put at an element.
  [[nodiscard]] pugi::xml_parse_result Load(std::span<const std::byte> AData, unsigned AOptions) {
    return FDocument.load_buffer(AData.data(), AData.size(), AOptions);
  }
  [[nodiscard]] const pugi::xml_document& Document() const noexcept { return FDocument; }
  /// Moves to a node, when there is one.
  bool MoveTo(pugi::xml_node ANode) {
    if (!ANode) return false;
    FNode = ANode;
    FNextAttribute = pugi::xml_attribute();
    return true;
  }

  [[nodiscard]] std::u16string Name() const override { return FromUtf8(FNode.name()); }
  [[nodiscard]] bool GetAttribute(TXmlName AName, std::u16string& AValue) const override {
    const pugi::xml_attribute attribute = FNode.attribute(AName.Text(), FNextAttribute);
    if (attribute) AssignUtf8(AValue, attribute.value());
    return static_cast<bool>(attribute);
  }
  [[nodiscard]] bool MoveToFirstChild() override { return MoveTo(FirstElement(FNode.first_child())); }
  [[nodiscard]] bool MoveToChild(TXmlName AName) override {
    pugi::xml_node node = FNode.child(AName.Text());
    // the name alone would do for an instruction too
    while (node && node.type() != pugi::node_element) node = node.next_sibling(AName.Text());
    return MoveTo(node);
  }
  [[nodiscard]] bool MoveToNext() override { return MoveTo(FirstElement(FNode.next_sibling())); }
  bool MoveToParent() override {
    const pugi::xml_node parent = FNode.parent();
    return parent.type() == pugi::node_element && MoveTo(parent);
  }

 private:
  static pugi::xml_node FirstElement(pugi::xml_node ANode) {
    while (ANode && ANode.type() != pugi::node_element) ANode = ANode.next_sibling();
    return ANode;
  }

  pugi::xml_document FDocument;
  pugi::xml_node FNode;
  /// Where the parser looks first: attributes are mostly asked for in the order in which they are written.
  mutable pugi::xml_attribute FNextAttribute;
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

TWinError TSimulatedXml::Parse(std::span<const std::byte> AData, std::unique_ptr<IXmlCursor>& ACursor) {
  if (!FCom.HasJoined()) return ComNotInitialized;
  // as fragment and with the declaration of a type kept: OnlyElement judges what stands at the top
  constexpr unsigned Options = pugi::parse_default | pugi::parse_fragment | pugi::parse_doctype;
  auto cursor = std::make_unique<TCursor>();
  const pugi::xml_parse_result result = cursor->Load(AData, Options);
  if (result.status == pugi::status_out_of_memory) return WinError::NotEnoughMemory;
  if (!result || !cursor->MoveTo(OnlyElement(cursor->Document()))) return WinError::BadFormat;
  ACursor = std::move(cursor);
  return WinError::Success;
}

}  // namespace varcolin
