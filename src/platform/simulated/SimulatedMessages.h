// Message boxes of a simulated machine: nobody sees them, they are logged and answered by a script.
#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/MessageBoxes.h"

namespace varcolin {

/// One message box that was shown.
struct TShownBox {
  std::u16string Text;
  std::u16string Caption;
  std::uint32_t Style = 0;

  friend bool operator==(const TShownBox&, const TShownBox&) = default;
};

/// Any thread.
class TSimulatedMessages final : public IMessageBoxes {
 public:
  /// Answers with the next answer of the queue; without one a question gets No, anything else Ok.
  std::int32_t ShowBox(std::u16string_view AText, std::u16string_view ACaption, std::uint32_t AStyle) override {
    const std::lock_guard lock(FMutex);
    FShown.push_back({std::u16string(AText), std::u16string(ACaption), AStyle});
    if (FAnswers.empty()) {
      constexpr std::uint32_t ButtonMask = 0xF;
      return (AStyle & ButtonMask) == MessageStyle::YesNo ? MessageAnswer::No : MessageAnswer::Ok;
    }
    const std::int32_t answer = FAnswers.front();
    FAnswers.pop_front();
    return answer;
  }

  void QueueAnswer(std::int32_t AAnswer) {
    const std::lock_guard lock(FMutex);
    FAnswers.push_back(AAnswer);
  }
  [[nodiscard]] std::vector<TShownBox> Shown() {
    const std::lock_guard lock(FMutex);
    return FShown;
  }

 private:
  std::mutex FMutex;
  std::vector<TShownBox> FShown;
  std::deque<std::int32_t> FAnswers;
};

}  // namespace varcolin
