// The objects of "helper.dll", one factory each. All work on the machine for as long as they live.
#pragma once

#include "intf/intf_Helper.h"
#include "platform/Machine.h"

namespace varcolin {

[[nodiscard]] TInterfaceRef<IHelper> MakeHostHelper(const TMachine& AMachine);
[[nodiscard]] TInterfaceRef<iShellHelper> MakeShellHelper(const TMachine& AMachine);
[[nodiscard]] TInterfaceRef<IGlobals> MakeGlobals(const TMachine& AMachine);
[[nodiscard]] TInterfaceRef<IOptions> MakeOptions(const TMachine& AMachine);

}  // namespace varcolin
