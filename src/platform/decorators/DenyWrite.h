// A machine that nothing can be changed on, to prove that an operation only looks.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/decorators/ForwardingMachine.h"

namespace varcolin {

/// Refuses every call that would change the registry or the files with AccessDenied and remembers it. Opening a key
/// with rights to write is no change. Any thread.
class TWriteGuard final : public ICallGate {
 public:
  [[nodiscard]] TWinError Admit(const TCall& ACall) override;

  /// The refused calls in their order ("Files.RemoveFile C:\…"); a test expects none.
  [[nodiscard]] std::vector<std::u16string> Refused() const;

 private:
  mutable std::mutex FLock;
  std::vector<std::u16string> FRefused;
};

/// A machine whose writing calls are refused.
class TDenyWriteMachine {
 public:
  TDenyWriteMachine(const TMachine& AInner, TWriteGuard& AGuard) : FMachine(AInner, AGuard) {}
  [[nodiscard]] TMachine Facilities() noexcept { return FMachine.Facilities(); }

 private:
  TForwardingMachine FMachine;
};

}  // namespace varcolin
