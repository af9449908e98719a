// ISync over the real Windows calls.
#pragma once

#include "platform/Sync.h"

namespace varcolin {

class TWindowsSync final : public ISync {
 public:
  [[nodiscard]] TWinError MakeEvent(bool ASignaled, TEvent& AEvent) override;
  void SignalEvent(const TEvent& AEvent) noexcept override;
  void ResetSignal(const TEvent& AEvent) noexcept override;
  [[nodiscard]] EWaitResult WaitForEvent(const TEvent& AEvent, std::uint32_t ATimeout) override;
  [[nodiscard]] EWaitResult WaitForAny(std::span<const TWaitable> AHandles, std::uint32_t ATimeout) override;
  void SleepFor(std::uint32_t ATime) override;
  [[nodiscard]] std::uint32_t TickCount() override;
  [[nodiscard]] TWinError SetOwnPriority(std::int32_t APriority) override;
  [[nodiscard]] TWinError MakeNamedMutex(std::u16string_view AName, TNamedMutex& AMutex, bool& AExisted) override;
  [[nodiscard]] TWinError OpenNamedMutex(std::u16string_view AName, TNamedMutex& AMutex) override;
  void CloseValue(TEventTag, std::uintptr_t AEvent) noexcept override;
  void CloseValue(TMutexTag, std::uintptr_t AMutex) noexcept override;
};

}  // namespace varcolin
