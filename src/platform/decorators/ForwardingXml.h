// XML documents that are parsed by another parser.
#pragma once

#include "platform/Xml.h"
#include "platform/decorators/CallGate.h"

namespace varcolin {

/// Forwards each call to another facility when the gate admits it. What it has parsed is read without the gate.
class TForwardingXml : public TForwarding<IXml> {
 public:
  explicit TForwardingXml(IXml& AInner, ICallGate& AGate = OpenGate) : TForwarding(AInner, AGate, "Xml") {}

  [[nodiscard]] TWinError Parse(std::span<const std::byte> AData, std::unique_ptr<IXmlCursor>& ACursor) override {
    return Look("Parse", {}, [&] { return Inner().Parse(AData, ACursor); });
  }
};

}  // namespace varcolin
