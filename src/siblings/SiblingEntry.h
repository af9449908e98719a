// The export of a sibling library that is a file of its own: each "<Name>.windows.cpp" is one library with this entry.
#pragma once

#include "siblings/SiblingLibrary.h"
#include "support/uText.h"

namespace varcolin {

/// Answers one call of the export over a machine of type TRealMachine. The library is created at the first call, not
/// while the system loads the file, and destroyed when the system frees it. Any thread.
template <class TRealMachine>
[[nodiscard]] void* SiblingInstance(std::unique_ptr<TSiblingLibrary> (*AMake)(const TMachine&),
                                    const char16_t* AGuid) noexcept {
  return Guarded<void*>(nullptr, [&] {
    static TRealMachine machine;
    static const std::unique_ptr<TSiblingLibrary> library = AMake(machine.Facilities());
    return library->FindInterface(TextOf(AGuid));
  });
}

}  // namespace varcolin
