// XML documents on a simulated machine.
#pragma once

#include "platform/Xml.h"

namespace varcolin {

class TSimulatedCom;

/// Parses as Windows does, but is less strict: it lets names pass that no name may be, prefixes that are not declared,
/// attributes that an element has twice, references to entities that there are not, and malformed UTF-8. Any thread.
class TSimulatedXml final : public IXml {
 public:
  explicit TSimulatedXml(TSimulatedCom& ACom) noexcept : FCom(ACom) {}

  [[nodiscard]] TWinError Parse(std::span<const std::byte> AData, std::unique_ptr<IXmlCursor>& ACursor) override;

 private:
  TSimulatedCom& FCom;
};

}  // namespace varcolin
