// The processes and the user of a simulated machine.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Processes.h"
#include "platform/simulated/SimulatedClock.h"
#include "platform/simulated/SimulatedFacts.h"
#include "platform/simulated/SimulatedHandles.h"

namespace varcolin {

struct TProcessInfo;

/// Raised by EndOwnProcess. Not an error: nothing above the seam may catch it, so it derives from no exception class.
struct TSimulatedProcessEnd {
  std::uint32_t Code = 0;
};

/// Any thread. The clock outlives the object.
class TSimulatedProcesses final : public IProcesses {
 public:
  TSimulatedProcesses(TSimulatedClock& AClock, const TSimulatedFacts& AFacts);

  [[nodiscard]] TWinError GetUserSid(std::u16string& ASid) override;
  [[nodiscard]] TWinError GetNameOfUser(std::u16string& AName) override;
  [[nodiscard]] TWinError QueryUserIsAdmin(bool& AAnswer) override;
  [[nodiscard]] std::vector<std::u16string> HostArguments() override;
  [[nodiscard]] std::uint32_t CurrentProcessId() override;
  [[nodiscard]] TWinError EnumProcesses(std::vector<TProcessEntry>& AEntries) override;
  [[nodiscard]] TWinError GetProcessPath(std::uint32_t AId, std::u16string& APath) override;
  [[nodiscard]] TWinError OpenToRead(std::uint32_t AId, TProcess& AProcess) override;
  [[nodiscard]] TWinError GetModulePath(const TProcess& AProcess, std::u16string& APath) override;
  [[nodiscard]] TWinError GetImagePath(const TProcess& AProcess, std::u16string& APath) override;
  [[nodiscard]] EWaitResult WaitForEnd(const TProcess& AProcess, std::uint32_t ATimeout) override;
  [[nodiscard]] TWinError GetExitCode(const TProcess& AProcess, std::uint32_t& ACode) override;
  void CloseValue(TProcessTag, std::uintptr_t AProcess) noexcept override;
  void CloseValue(TProcessThreadTag, std::uintptr_t AThread) noexcept override;
  [[noreturn]] void EndOwnProcess(std::uint32_t AExitCode) override;

  void SetHostArguments(std::vector<std::u16string> AArguments);
  /// The executable of this process, a full path.
  void SetOwnPath(std::u16string_view APath);
  /// Lets a process run; one with the same id is replaced. APath: its executable; what is no full path is a name only,
  /// and the process one that may not be looked into.
  void AddProcess(std::uint32_t AId, std::u16string_view APath);
  /// Ends a process; what is no process is passed over.
  void EndProcess(std::uint32_t AId, std::uint32_t AExitCode = 0);
  /// Lets a process run under an id that no process had before, and opens it.
  [[nodiscard]] TProcessInfo StartProcess(std::u16string_view APath);
  [[nodiscard]] bool IsRunning(std::uint32_t AId);
  /// Processes and threads that are open.
  [[nodiscard]] std::size_t OpenHandleCount();

 private:
  // A process as long as it runs or is open.
  struct TRun {
    std::u16string Path;
    TClockSignal Ended;
    std::uint32_t ExitCode = 259;
  };

  // these need the lock
  [[nodiscard]] TProcess OpenRun(std::shared_ptr<TRun> ARun);
  [[nodiscard]] std::shared_ptr<TRun> RunOf(const TProcess& AProcess);

  TSimulatedClock& FClock;
  const std::u16string FUserSid;
  const std::u16string FUserName;
  const bool FIsAdmin;
  std::mutex FMutex;
  std::vector<std::u16string> FArguments;
  std::map<std::uint32_t, std::shared_ptr<TRun>> FProcesses;  // those that run
  std::uint32_t FLastId;
  THandleTable<std::shared_ptr<TRun>> FOpen;
  THandleTable<std::uint32_t> FThreads;
};

}  // namespace varcolin
