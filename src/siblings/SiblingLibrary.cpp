#include "siblings/SiblingLibrary.h"

#include "support/uGuid.h"

namespace varcolin {

bool IsRequestFor(std::u16string_view ARequest, const TGUID& AIID) noexcept { return ParseGuid(ARequest) == AIID; }

}  // namespace varcolin
