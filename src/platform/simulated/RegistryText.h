// Reads the exports of the registry editor.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "platform/simulated/ImageError.h"

namespace varcolin {

class TSimulatedRegistry;

/// Loads an export into the registry's native view: "Windows Registry Editor Version 5.00" in UTF-16LE with a
/// byte-order mark or in UTF-8, or "REGEDIT4" in Windows-1252. Keys and values are added to what is there; deletions
/// remove. A comment "; last-write: 2012-08-09T10:11:12" in the line below a key's header sets that key's last write
/// time (UTC); other keys that are new get the clock's time.
///
/// AFileName (UTF-8) is for messages only. Raises EImageError that names the first line that is not understood; what
/// the lines before it say has been loaded then. Beside the registry it needs memory for the longest line and value.
void LoadRegistryText(std::span<const std::byte> AData, std::string_view AFileName, TSimulatedRegistry& ARegistry);

}  // namespace varcolin
