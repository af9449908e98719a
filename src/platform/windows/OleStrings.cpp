// The OLE strings of the library boundary over the system's allocator, so that any Windows code may free them.
#include <limits>

#include "intf/intf_Base.h"
#include "platform/windows/WindowsApi.h"

namespace varcolin {

TOleString AllocOleString(std::u16string_view AText) noexcept {
  if (AText.size() > std::numeric_limits<LONG>::max() / sizeof(char16_t)) return nullptr;
  return reinterpret_cast<TOleString>(SysAllocStringLen(AsWide(AText.data()), static_cast<UINT>(AText.size())));
}

void FreeOleString(TOleString AText) noexcept { SysFreeString(AsWide(AText)); }

std::size_t OleStringLength(const char16_t* AText) noexcept {
  return SysStringLen(const_cast<wchar_t*>(AsWide(AText)));
}

}  // namespace varcolin
