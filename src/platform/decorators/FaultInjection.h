// A machine whose calls fail on demand.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "platform/decorators/ForwardingMachine.h"

namespace varcolin {

/// Which calls a plan lets fail.
enum class EFault {
  Never,       ///< none; the plan only counts
  Transient,   ///< the Nth alone
  Persistent,  ///< the Nth and all that follow
  Periodic,    ///< every Nth
};

/// Counts the calls that can fail and lets some of them fail. A sweep runs one operation again and again with N = 1, 2,
/// 3, …, until a run injects nothing. Any thread.
class TFaultPlan final : public ICallGate {
 public:
  /// Chooses the calls that are counted at all.
  using TFilter = std::function<bool(const TCall&)>;

  /// A code that no code above the seam expects: ERROR_NO_SYSTEM_RESOURCES.
  static constexpr TWinError UnexpectedError = 1450;

  /// ANumber: N, counted from 1. AFilter may be empty and is called from any thread.
  explicit TFaultPlan(EFault AKind, std::uint64_t ANumber = 1, TWinError AError = UnexpectedError,
                      TFilter AFilter = {});

  [[nodiscard]] TWinError Admit(const TCall& ACall) override;

  /// Calls counted so far.
  [[nodiscard]] std::uint64_t CallCount() const noexcept { return FCalls; }
  /// Calls that this plan let fail.
  [[nodiscard]] std::uint64_t InjectionCount() const noexcept { return FInjections; }

 private:
  [[nodiscard]] bool Fails(std::uint64_t ACall) const noexcept;

  EFault FKind;
  std::uint64_t FNumber;
  TWinError FError;
  TFilter FFilter;
  std::atomic<std::uint64_t> FCalls{0};
  std::atomic<std::uint64_t> FInjections{0};
};

/// A machine whose calls consult a plan.
class TFaultyMachine {
 public:
  TFaultyMachine(const TMachine& AInner, TFaultPlan& APlan) : FMachine(AInner, APlan) {}
  [[nodiscard]] TMachine Facilities() noexcept { return FMachine.Facilities(); }

 private:
  TForwardingMachine FMachine;
};

}  // namespace varcolin
