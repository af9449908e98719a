#include "platform/decorators/FaultInjection.h"

#include <algorithm>
#include <utility>

namespace varcolin {

TFaultPlan::TFaultPlan(EFault AKind, std::uint64_t ANumber, TWinError AError, TFilter AFilter)
    : FKind(AKind), FNumber(std::max<std::uint64_t>(ANumber, 1)), FError(AError), FFilter(std::move(AFilter)) {}

TWinError TFaultPlan::Admit(const TCall& ACall) {
  if (!ACall.CanFail || (FFilter && !FFilter(ACall))) return WinError::Success;
  if (!Fails(++FCalls)) return WinError::Success;
  ++FInjections;
  return FError;
}

bool TFaultPlan::Fails(std::uint64_t ACall) const noexcept {
  switch (FKind) {
    case EFault::Transient:
      return ACall == FNumber;
    case EFault::Persistent:
      return ACall >= FNumber;
    case EFault::Periodic:
      return ACall % FNumber == 0;
    case EFault::Never:
      break;
  }
  return false;
}

}  // namespace varcolin
