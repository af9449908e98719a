#include "platform/windows/WindowsXml.h"

#include <algorithm>
#include <memory>

#include "intf/intf_Base.h"
#include "platform/windows/WindowsApi.h"
#include "support/uText.h"
// It needs the declarations of windows.h in front of it.
#include <msxml2.h>

namespace varcolin {

namespace {

constexpr CLSID ClassOfDocument60{0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr CLSID ClassOfDocument30{0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
constexpr IID IdOfDocument2{0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
constexpr IID IdOfElement{0x2933BF86, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

/// A text for the length of a call that takes a BSTR.
class TArgument {
 public:
  explicit TArgument(std::u16string_view AText) : FText(AllocOleString(AText)) {}
  [[nodiscard]] BSTR Get() noexcept { return AsWide(const_cast<char16_t*>(FText.View().data())); }

 private:
  TOleText FText;
};

class TVariant {
 public:
  TVariant() noexcept { VariantInit(&FValue); }
  explicit TVariant(bool AFlag) noexcept : TVariant() {
    FValue.vt = VT_BOOL;
    FValue.boolVal = AFlag ? VARIANT_TRUE : VARIANT_FALSE;
  }
  TVariant(const TVariant&) = delete;
  TVariant& operator=(const TVariant&) = delete;
  ~TVariant() { VariantClear(&FValue); }

  /// Makes it an array with a copy of the bytes; false when there is no memory for them.
  [[nodiscard]] bool SetBytes(std::span<const std::byte> AData) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(AData.size()));
    if (array == nullptr) return false;
    FValue.vt = VT_ARRAY | VT_UI1;
    FValue.parray = array;
    std::ranges::copy(AData, static_cast<std::byte*>(array->pvData));
    return true;
  }
  [[nodiscard]] VARIANT* Receive() noexcept { return &FValue; }
  [[nodiscard]] const VARIANT& Get() const noexcept { return FValue; }

 private:
  VARIANT FValue;
};

class TCursor final : public IXmlCursor {
 public:
  explicit TCursor(TInterfaceRef<IXMLDOMElement> AElement) noexcept : FElement(std::move(AElement)) {}

  [[nodiscard]] std::u16string Name() const override { return NameOf(*FElement); }
  [[nodiscard]] bool GetAttribute(TXmlName AName, std::u16string& AValue) const override {
    TArgument name(FromAscii(AName.View()));
    TVariant value;
    // one that there is not answers with a success too, and no text
    if (FElement->getAttribute(name.Get(), value.Receive()) != S_OK || value.Get().vt != VT_BSTR) return false;
    AValue = FromWide(value.Get().bstrVal, SysStringLen(value.Get().bstrVal));
    return true;
  }
  [[nodiscard]] bool MoveToFirstChild() override { return MoveTo(FirstChild()); }
  [[nodiscard]] bool MoveToChild(TXmlName AName) override {
    const std::u16string name = FromAscii(AName.View());
    TInterfaceRef<IXMLDOMElement> child = FirstChild();
    while (child && NameOf(*child) != name) child = NextOf(*child);
    return MoveTo(std::move(child));
  }
  [[nodiscard]] bool MoveToNext() override { return MoveTo(NextOf(*FElement)); }
  bool MoveToParent() override {
    TInterfaceRef<IXMLDOMNode> node;
    TInterfaceRef<IXMLDOMElement> parent;
    if (SUCCEEDED(FElement->get_parentNode(node.Receive())) && node) parent = AsElement(*node);
    return MoveTo(std::move(parent));
  }

 private:
  /// Null for what is no element: it does not answer to an element's interface.
  static TInterfaceRef<IXMLDOMElement> AsElement(IXMLDOMNode& ANode) {
    TInterfaceRef<IXMLDOMElement> element;
    static_cast<void>(ANode.QueryInterface(IdOfElement, reinterpret_cast<void**>(element.Receive())));
    return element;
  }
  /// ANode, or the first element behind it.
  static TInterfaceRef<IXMLDOMElement> FirstElement(TInterfaceRef<IXMLDOMNode> ANode) {
    TInterfaceRef<IXMLDOMElement> element;
    while (ANode && !(element = AsElement(*ANode))) {
      TInterfaceRef<IXMLDOMNode> next;
      if (FAILED(ANode->get_nextSibling(next.Receive()))) break;
      ANode = std::move(next);
    }
    return element;
  }
  static TInterfaceRef<IXMLDOMElement> NextOf(IXMLDOMElement& AElement) {
    TInterfaceRef<IXMLDOMNode> node;
    if (FAILED(AElement.get_nextSibling(node.Receive()))) return {};
    return FirstElement(std::move(node));
  }
  static std::u16string NameOf(IXMLDOMElement& AElement) {
    TOleText name;
    if (FAILED(AElement.get_nodeName(reinterpret_cast<BSTR*>(name.Receive())))) return {};
    return std::u16string(name.View());
  }

  [[nodiscard]] TInterfaceRef<IXMLDOMElement> FirstChild() const {
    TInterfaceRef<IXMLDOMNode> node;
    if (FAILED(FElement->get_firstChild(node.Receive()))) return {};
    return FirstElement(std::move(node));
  }
  /// Moves to an element, when there is one.
  bool MoveTo(TInterfaceRef<IXMLDOMElement> AElement) noexcept {
    if (!AElement) return false;
    FElement = std::move(AElement);
    return true;
  }

  TInterfaceRef<IXMLDOMElement> FElement;
};

/// The newest parser that the system has, told to work at once and to look at nothing but what it is given.
HRESULT MakeDocument(TInterfaceRef<IXMLDOMDocument2>& ADocument) {
  HRESULT result = REGDB_E_CLASSNOTREG;
  for (const CLSID& classId : {ClassOfDocument60, ClassOfDocument30}) {
    result = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IdOfDocument2,
                              reinterpret_cast<void**>(ADocument.Receive()));
    if (SUCCEEDED(result) || result == CO_E_NOTINITIALIZED) break;
  }
  if (FAILED(result)) return result;
  TArgument prohibitDtd(u"ProhibitDTD");
  // an old parser that lacks the property lets declarations pass; Parse refuses what they were in
  static_cast<void>(ADocument->setProperty(prohibitDtd.Get(), TVariant(true).Get()));
  result = ADocument->put_async(VARIANT_FALSE);
  if (SUCCEEDED(result)) result = ADocument->put_validateOnParse(VARIANT_FALSE);
  if (SUCCEEDED(result)) result = ADocument->put_resolveExternals(VARIANT_FALSE);
  return result;
}

}  // namespace

TWinError TWindowsXml::Parse(std::span<const std::byte> AData, std::unique_ptr<IXmlCursor>& ACursor) {
  TInterfaceRef<IXMLDOMDocument2> document;
  if (const HRESULT result = MakeDocument(document); FAILED(result)) return FromResult(result);
  TVariant source;
  if (!source.SetBytes(AData)) return WinError::NotEnoughMemory;
  VARIANT_BOOL loaded = VARIANT_FALSE;
  const HRESULT result = document->load(source.Get(), &loaded);
  if (result == E_OUTOFMEMORY) return WinError::NotEnoughMemory;
  if (result != S_OK || loaded == VARIANT_FALSE) return WinError::BadFormat;
  TInterfaceRef<IXMLDOMDocumentType> type;
  if (SUCCEEDED(document->get_doctype(type.Receive())) && type) return WinError::BadFormat;
  TInterfaceRef<IXMLDOMElement> root;
  if (FAILED(document->get_documentElement(root.Receive())) || !root) return WinError::BadFormat;
  ACursor = std::make_unique<TCursor>(std::move(root));
  return WinError::Success;
}

}  // namespace varcolin
