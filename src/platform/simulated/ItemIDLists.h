// Item ID lists of the shell, as Windows writes them into links: which items a simulated machine understands.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "intf/intf_Base.h"

namespace varcolin {

enum class EShellItem {
  Guid,     ///< a place of the namespace that has a class id
  Drive,    ///< Name is "C:\"
  File,     ///< a file or folder; Name is its long name
  Network,  ///< Name is a whole UNC path
  Unknown,
};

/// One item of a list.
struct TShellItem {
  EShellItem Kind = EShellItem::Unknown;
  std::u16string Name;
  TGUID Guid{};
};

/// The items of a list, whose terminator may be missing. False when an item reaches past the end of the bytes or is
/// shorter than its own length field.
[[nodiscard]] bool DecodeIDList(std::span<const std::byte> AIDList, std::vector<TShellItem>& AItems);

}  // namespace varcolin
