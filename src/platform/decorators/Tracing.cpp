#include "platform/decorators/Tracing.h"

namespace varcolin {

TWinError TTrace::Admit(const TCall& ACall) {
  std::string name(ACall.Facility);
  name.append(".").append(ACall.Method);
  const std::lock_guard guard(FLock);
  ++FCounts[name];
  if (FKeepCalls) FCalls.push_back({std::move(name), std::u16string(ACall.Subject)});
  return WinError::Success;
}

std::uint64_t TTrace::CountOf(std::string_view AName) const {
  const std::lock_guard guard(FLock);
  const auto found = FCounts.find(AName);
  return found != FCounts.end() ? found->second : 0;
}

std::uint64_t TTrace::CountOfAll() const {
  const std::lock_guard guard(FLock);
  std::uint64_t sum = 0;
  for (const auto& [name, count] : FCounts) sum += count;
  return sum;
}

std::map<std::string, std::uint64_t, std::less<>> TTrace::Counts() const {
  const std::lock_guard guard(FLock);
  return FCounts;
}

std::vector<TTracedCall> TTrace::Calls() const {
  const std::lock_guard guard(FLock);
  return FCalls;
}

void TTrace::Clear() {
  const std::lock_guard guard(FLock);
  FCounts.clear();
  FCalls.clear();
}

}  // namespace varcolin
