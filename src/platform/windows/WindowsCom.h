// ICom over the real Windows calls.
#pragma once

#include "platform/Com.h"

namespace varcolin {

class TWindowsCom final : public ICom {
 public:
  [[nodiscard]] bool JoinCom(ECom AKind) override;
  void LeaveCom() noexcept override;
};

}  // namespace varcolin
