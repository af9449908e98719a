// XML documents.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/Types.h"

namespace varcolin {

/// The name of an element or an attribute to look for: a literal of ASCII characters, as every parser can take it.
class TXmlName {
 public:
  template <std::size_t Size>
  consteval TXmlName(const char (&AText)[Size]) : FText(AText) {  // NOLINT(google-explicit-constructor)
    for (const char character : View()) {
      if (static_cast<unsigned char>(character) >= 0x80) throw "a name to look for is ASCII";
    }
  }

  [[nodiscard]] constexpr std::string_view View() const noexcept { return FText; }
  /// With a terminator.
  [[nodiscard]] constexpr const char* Text() const noexcept { return FText; }

 private:
  const char* FText;
};

/// A place in a document, which it keeps: always one of its elements, the root at first. Names are those that the
/// document writes, prefix included; they are compared with regard to case. A move that finds nothing stays where it
/// is. Used on the thread that parsed the document.
class IXmlCursor {
 public:
  virtual ~IXmlCursor() = default;

  /// The qualified name of the element. Windows: IXMLDOMNode::get_nodeName.
  [[nodiscard]] virtual std::u16string Name() const = 0;
  /// The value of an attribute, with references resolved and blanks normalised; false, and AValue untouched, when the
  /// element has none of that name. Windows: IXMLDOMElement::getAttribute.
  [[nodiscard]] virtual bool GetAttribute(TXmlName AName, std::u16string& AValue) const = 0;
  /// Moves to the first child element; false when there is none. Windows: IXMLDOMNode::get_firstChild.
  [[nodiscard]] virtual bool MoveToFirstChild() = 0;
  /// Moves to the first child element with a name; false when there is none.
  [[nodiscard]] virtual bool MoveToChild(TXmlName AName) = 0;
  /// Moves to the next element below the same parent; false when there is none. Windows: IXMLDOMNode::get_nextSibling.
  [[nodiscard]] virtual bool MoveToNext() = 0;
  /// Moves to the element around it; false at the root. Windows: IXMLDOMNode::get_parentNode.
  virtual bool MoveToParent() = 0;
};

class IXml {
 public:
  virtual ~IXml() = default;

  /// Parses a document and gives a cursor at its root. The encoding is that of the byte-order mark, or else the one
  /// that the document names. BadFormat for what is not well-formed, and for every document with a document type
  /// declaration, so that nothing is ever expanded or fetched; a limit on depth may apply from 256 levels on. The
  /// calling thread has joined COM. Windows: IXMLDOMDocument::load.
  [[nodiscard]] virtual TWinError Parse(std::span<const std::byte> AData, std::unique_ptr<IXmlCursor>& ACursor) = 0;
};

}  // namespace varcolin
