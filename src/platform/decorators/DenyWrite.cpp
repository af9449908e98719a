#include "platform/decorators/DenyWrite.h"

namespace varcolin {

TWinError TWriteGuard::Admit(const TCall& ACall) {
  if (!ACall.Writes) return WinError::Success;
  std::u16string text(ACall.Facility.begin(), ACall.Facility.end());
  text.append(u".").append(ACall.Method.begin(), ACall.Method.end());
  text.append(u" ").append(ACall.Subject);
  const std::lock_guard guard(FLock);
  FRefused.push_back(std::move(text));
  return WinError::AccessDenied;
}

std::vector<std::u16string> TWriteGuard::Refused() const {
  const std::lock_guard guard(FLock);
  return FRefused;
}

}  // namespace varcolin
