// A machine that remembers what it was asked.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/decorators/ForwardingMachine.h"

namespace varcolin {

/// One call of a trace.
struct TTracedCall {
  std::string Name;  ///< "Registry.OpenKey"
  std::u16string Subject;
};

/// Counts calls per method and, when asked to, keeps each of them in order. Any thread.
class TTrace final : public ICallGate {
 public:
  /// AKeepCalls: whether Calls gives them.
  explicit TTrace(bool AKeepCalls = false) : FKeepCalls(AKeepCalls) {}

  [[nodiscard]] TWinError Admit(const TCall& ACall) override;

  /// Number of calls of a method ("Registry.OpenKey"), or of all.
  [[nodiscard]] std::uint64_t CountOf(std::string_view AName) const;
  [[nodiscard]] std::uint64_t CountOfAll() const;
  /// The counts of all methods that were called, by name.
  [[nodiscard]] std::map<std::string, std::uint64_t, std::less<>> Counts() const;
  /// The calls in their order; empty when they are not kept.
  [[nodiscard]] std::vector<TTracedCall> Calls() const;
  /// Forgets everything.
  void Clear();

 private:
  const bool FKeepCalls;
  mutable std::mutex FLock;
  std::map<std::string, std::uint64_t, std::less<>> FCounts;
  std::vector<TTracedCall> FCalls;
};

/// A machine whose calls are traced.
class TTracedMachine {
 public:
  TTracedMachine(const TMachine& AInner, TTrace& ATrace) : FMachine(AInner, ATrace) {}
  [[nodiscard]] TMachine Facilities() noexcept { return FMachine.Facilities(); }

 private:
  TForwardingMachine FMachine;
};

}  // namespace varcolin
