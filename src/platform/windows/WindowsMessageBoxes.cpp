#include "platform/windows/WindowsMessageBoxes.h"

#include "platform/windows/WindowsApi.h"

namespace varcolin {

std::int32_t TWindowsMessageBoxes::ShowBox(std::u16string_view AText, std::u16string_view ACaption,
                                           std::uint32_t AStyle) {
  const int answer = MessageBoxW(nullptr, TApiText(AText).Get(), TApiText(ACaption).Get(), AStyle);
  return answer > 0 ? answer : MessageAnswer::None;
}

}  // namespace varcolin
