// The processes and the user of a simulated machine.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Processes.h"
#include "platform/simulated/SimulatedFacts.h"

namespace varcolin {

/// Raised by EndOwnProcess. Not an error: nothing above the seam may catch it, so it derives from no exception class.
struct TSimulatedProcessEnd {
  std::uint32_t Code = 0;
};

/// Any thread.
class TSimulatedProcesses final : public IProcesses {
 public:
  explicit TSimulatedProcesses(const TSimulatedFacts& AFacts);

  [[nodiscard]] TWinError GetUserSid(std::u16string& ASid) override;
  [[nodiscard]] TWinError GetNameOfUser(std::u16string& AName) override;
  [[nodiscard]] TWinError QueryUserIsAdmin(bool& AAnswer) override;
  [[nodiscard]] std::vector<std::u16string> HostArguments() override;
  [[nodiscard]] std::uint32_t CurrentProcessId() override;
  [[nodiscard]] TWinError EnumProcesses(std::vector<TProcessEntry>& AEntries) override;
  [[nodiscard]] TWinError GetProcessPath(std::uint32_t AId, std::u16string& APath) override;
  [[noreturn]] void EndOwnProcess(std::uint32_t AExitCode) override;

  void SetHostArguments(std::vector<std::u16string> AArguments);
  /// The executable of this process, a full path.
  void SetOwnPath(std::u16string_view APath);
  /// Lets a process run; one with the same id is replaced. APath: its executable; what is no full path is a name only,
  /// and the process one that may not be looked into.
  void AddProcess(std::uint32_t AId, std::u16string_view APath);
  void RemoveProcess(std::uint32_t AId);

 private:
  const std::u16string FUserSid;
  const std::u16string FUserName;
  const bool FIsAdmin;
  std::mutex FMutex;
  std::vector<std::u16string> FArguments;
  std::map<std::uint32_t, std::u16string> FProcesses;
};

}  // namespace varcolin
