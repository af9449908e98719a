#include "products/uItemFolder.h"

namespace varcolin {

std::shared_ptr<const TItemFolder> TItemFolder::ItemByName(std::u16string_view /*ADisplayName*/,
                                                           std::u16string_view /*AInstallLocation*/) {
  return nullptr;
}

}  // namespace varcolin
