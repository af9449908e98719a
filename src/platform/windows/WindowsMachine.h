// The machine that this process really runs on. This header needs no Windows header.
#pragma once

#include <memory>

#include "platform/Machine.h"

namespace varcolin {

/// Owns the facilities over the real Windows calls; it must outlive every handle that they give out.
class TWindowsMachine {
 public:
  TWindowsMachine();
  TWindowsMachine(const TWindowsMachine&) = delete;
  TWindowsMachine& operator=(const TWindowsMachine&) = delete;
  ~TWindowsMachine();

  [[nodiscard]] TMachine Facilities() noexcept;

 private:
  struct TParts;
  std::unique_ptr<TParts> FParts;
};

}  // namespace varcolin
