// The shell of a simulated machine: special folders and kinds of system.
#pragma once

#include <atomic>
#include <span>
#include <string>

#include "platform/Shell.h"
#include "platform/simulated/ItemIDLists.h"
#include "platform/simulated/SimulatedFacts.h"

namespace varcolin {

/// Unchanging but for the count of open folders; any thread.
class TSimulatedShell final : public IShell {
 public:
  explicit TSimulatedShell(const TSimulatedFacts& AFacts) : FFacts(AFacts), FEnvironment(EnvironmentOf(AFacts)) {}

  [[nodiscard]] TWinError GetSpecialFolder(std::int32_t ACsidl, std::u16string& APath) override;
  [[nodiscard]] TWinError QueryIsOS(std::uint32_t AKind, bool& AAnswer) override;
  [[nodiscard]] TWinError GetDesktopFolder(TShellFolder& AFolder) override;
  /// NotSupported for items other than drives, files, network places and places with a class id.
  [[nodiscard]] TWinError GetDisplayName(const TShellFolder& AFolder, std::span<const std::byte> AIDList,
                                         std::uint32_t AForm, std::u16string& AName) override;
  void CloseValue(TShellFolderTag, std::uintptr_t AFolder) noexcept override;

  [[nodiscard]] std::size_t OpenHandleCount() const noexcept { return FOpenFolders; }

 private:
  [[nodiscard]] TWinError GetParsingName(TItemIDList AItems, std::u16string& AName);
  [[nodiscard]] TWinError GetNameInFolder(TItemIDList AItems, std::u16string& AName) const;

  const TSimulatedFacts FFacts;
  const TEnvironment FEnvironment;
  std::atomic<std::size_t> FOpenFolders{0};
};

}  // namespace varcolin
