// IMessageBoxes over the real Windows calls.
#pragma once

#include "platform/MessageBoxes.h"

namespace varcolin {

class TWindowsMessageBoxes final : public IMessageBoxes {
 public:
  std::int32_t ShowBox(std::u16string_view AText, std::u16string_view ACaption, std::uint32_t AStyle) override;
};

}  // namespace varcolin
