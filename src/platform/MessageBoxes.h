// Message boxes.
#pragma once

#include <string_view>

#include "platform/Types.h"

namespace varcolin {

/// Bits of a message box's style.
namespace MessageStyle {
inline constexpr std::uint32_t YesNo = 0x4;
inline constexpr std::uint32_t IconError = 0x10;
inline constexpr std::uint32_t IconQuestion = 0x20;
inline constexpr std::uint32_t TaskModal = 0x2000;
inline constexpr std::uint32_t TopMost = 0x40000;
}  // namespace MessageStyle

/// The button that ended a message box.
namespace MessageAnswer {
inline constexpr std::int32_t None = 0;  ///< no message box could be shown
inline constexpr std::int32_t Ok = 1;
inline constexpr std::int32_t Yes = 6;
inline constexpr std::int32_t No = 7;
}  // namespace MessageAnswer

class IMessageBoxes {
 public:
  virtual ~IMessageBoxes() = default;

  /// Shows a message box without an owner and waits for the user. Windows: MessageBoxW; a failure (no display) answers
  /// None.
  virtual std::int32_t ShowBox(std::u16string_view AText, std::u16string_view ACaption, std::uint32_t AStyle) = 0;
};

}  // namespace varcolin
