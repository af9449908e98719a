// XML documents.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/Types.h"

namespace varcolin {

/// An element of a document. Names are those that the document writes, prefix included; they are compared with regard
/// to case. An element is used on the thread that parsed the document and must not outlive the document's root.
class IXmlElement {
 public:
  virtual ~IXmlElement() = default;

  /// The qualified name. Windows: IXMLDOMNode::get_nodeName.
  [[nodiscard]] virtual std::u16string Name() const = 0;
  /// The value of an attribute, with references resolved and blanks normalised; false when the element has none of that
  /// name. Windows: IXMLDOMElement::getAttribute.
  [[nodiscard]] virtual bool GetAttribute(std::u16string_view AName, std::u16string& AValue) const = 0;
  /// The first child element; null when there is none. Windows: IXMLDOMNode::get_firstChild.
  [[nodiscard]] virtual std::unique_ptr<IXmlElement> FirstChild() const = 0;
  /// Makes this object the next element below the same parent; false, and nothing changes, when there is none. Not for
  /// the root. Windows: IXMLDOMNode::get_nextSibling.
  [[nodiscard]] virtual bool MoveToNext() = 0;
  /// The first child element with a name; null when there is none.
  [[nodiscard]] virtual std::unique_ptr<IXmlElement> FindChild(std::u16string_view AName) const = 0;
};

class IXml {
 public:
  virtual ~IXml() = default;

  /// Parses a document and gives its root element, which keeps the document. The encoding is that of the byte-order
  /// mark, or else the one that the document names. BadFormat for what is not well-formed, and for every document with
  /// a document type declaration, so that nothing is ever expanded or fetched; a limit on depth may apply from 256
  /// levels on. The calling thread has joined COM. Windows: IXMLDOMDocument::load.
  [[nodiscard]] virtual TWinError Parse(std::span<const std::byte> AData, std::unique_ptr<IXmlElement>& ARoot) = 0;
};

}  // namespace varcolin
