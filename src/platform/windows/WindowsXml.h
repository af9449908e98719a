// IXml over MSXML.
#pragma once

#include "platform/Xml.h"

namespace varcolin {

class TWindowsXml final : public IXml {
 public:
  [[nodiscard]] TWinError Parse(std::span<const std::byte> AData, std::unique_ptr<IXmlCursor>& ACursor) override;
};

}  // namespace varcolin
