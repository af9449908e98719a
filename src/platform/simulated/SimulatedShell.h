// The shell of a simulated machine: special folders and kinds of system.
#pragma once

#include "platform/Shell.h"
#include "platform/simulated/SimulatedFacts.h"

namespace varcolin {

/// Unchanging, so any thread.
class TSimulatedShell final : public IShell {
 public:
  explicit TSimulatedShell(const TSimulatedFacts& AFacts) : FFacts(AFacts), FEnvironment(EnvironmentOf(AFacts)) {}

  [[nodiscard]] TWinError GetSpecialFolder(std::int32_t ACsidl, std::u16string& APath) override;
  [[nodiscard]] TWinError QueryIsOS(std::uint32_t AKind, bool& AAnswer) override;

 private:
  const TSimulatedFacts FFacts;
  const TEnvironment FEnvironment;
};

}  // namespace varcolin
