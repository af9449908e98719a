#include "support/Msi.Engine.h"

namespace varcolin {

std::u16string TMsiEngine::InstallLocation(std::u16string_view /*AGuid*/) { return {}; }

}  // namespace varcolin
