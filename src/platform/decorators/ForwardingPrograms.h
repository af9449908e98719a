// Starting programs and top-level windows that forward to others.
#pragma once

#include "platform/ProcessStart.h"
#include "platform/TopWindows.h"
#include "platform/decorators/CallGate.h"

namespace varcolin {

/// Forwards each call to another facility when the gate admits it. Starting a program counts as a change.
class TForwardingProcessStart : public TForwarding<IProcessStart> {
 public:
  explicit TForwardingProcessStart(IProcessStart& AInner, ICallGate& AGate = OpenGate)
      : TForwarding(AInner, AGate, "Starts") {}

  [[nodiscard]] TWinError OpenOwnToken(std::uint32_t AAccess, TToken& AToken) override {
    return Look("OpenOwnToken", {}, [&] { return Inner().OpenOwnToken(AAccess, AToken); });
  }
  [[nodiscard]] TWinError DuplicateAsPrimary(const TToken& AToken, TToken& ADuplicate) override {
    return Look("DuplicateAsPrimary", {}, [&] { return Inner().DuplicateAsPrimary(AToken, ADuplicate); });
  }
  [[nodiscard]] TWinError StartAsUser(const TToken& AToken, std::u16string_view ACommand, std::uint32_t AFlags,
                                      TProcessInfo& AProcess) override {
    return Change("StartAsUser", ACommand, [&] { return Inner().StartAsUser(AToken, ACommand, AFlags, AProcess); });
  }
  [[nodiscard]] TWinError StartAsSelf(std::u16string_view ACommand, std::uint32_t AFlags,
                                      TProcessInfo& AProcess) override {
    return Change("StartAsSelf", ACommand, [&] { return Inner().StartAsSelf(ACommand, AFlags, AProcess); });
  }
  [[nodiscard]] TWinError OpenByShell(std::u16string_view AProgram, std::u16string_view AParameters,
                                      std::int32_t AShow) override {
    return Change("OpenByShell", AProgram, [&] { return Inner().OpenByShell(AProgram, AParameters, AShow); });
  }
  void CloseValue(TTokenTag ATag, std::uintptr_t AToken) noexcept override { Inner().CloseValue(ATag, AToken); }
};

/// Forwards each call to another facility when the gate admits it.
class TForwardingTopWindows : public TForwarding<ITopWindows> {
 public:
  explicit TForwardingTopWindows(ITopWindows& AInner, ICallGate& AGate = OpenGate)
      : TForwarding(AInner, AGate, "Windows") {}

  [[nodiscard]] TWinError EnumTopWindows(std::vector<TWindowHandle>& AWindows) override {
    return Look("EnumTopWindows", {}, [&] { return Inner().EnumTopWindows(AWindows); });
  }
  [[nodiscard]] TWinError GetWindowFacts(TWindowHandle AWindow, TWindowFacts& AFacts) override {
    return Look("GetWindowFacts", {}, [&] { return Inner().GetWindowFacts(AWindow, AFacts); });
  }
  [[nodiscard]] std::u16string GetTitle(TWindowHandle AWindow) override {
    Show("GetTitle");
    return Inner().GetTitle(AWindow);
  }
  [[nodiscard]] TWinError CopySmallIcon(TWindowHandle AWindow, TIcon& AIcon) override {
    return Look("CopySmallIcon", {}, [&] { return Inner().CopySmallIcon(AWindow, AIcon); });
  }
  void RestoreWindow(TWindowHandle AWindow) override {
    Show("RestoreWindow");
    Inner().RestoreWindow(AWindow);
  }
  void BringToTop(TWindowHandle AWindow) override {
    Show("BringToTop");
    Inner().BringToTop(AWindow);
  }
};

}  // namespace varcolin
