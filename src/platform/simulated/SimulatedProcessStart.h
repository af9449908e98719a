// Starting programs of a simulated machine: a program that is described does what its description says.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ProcessStart.h"
#include "platform/simulated/SimulatedHandles.h"
#include "platform/simulated/SimulatedPrograms.h"

namespace varcolin {

class TSimulatedClock;
class TSimulatedFiles;
class TSimulatedModules;
class TSimulatedProcesses;
class TSimulatedRegistry;
class TSimulatedTopWindows;

/// One try to start a program.
struct TSimulatedStart {
  std::u16string Command;  ///< as it was given; with the parameters, behind a blank, when the shell opened it
  bool ByShell = false;
  TWinError Result = WinError::Success;

  friend bool operator==(const TSimulatedStart&, const TSimulatedStart&) = default;
};

/// Any thread. The other parts of the machine outlive the object. A file that no description fits is no program.
class TSimulatedProcessStart final : public IProcessStart {
 public:
  struct TParts {
    TSimulatedClock& Clock;
    TSimulatedFiles& Files;
    TSimulatedModules& Modules;
    TSimulatedProcesses& Processes;
    TSimulatedRegistry& Registry;
    TSimulatedTopWindows& Windows;
  };
  explicit TSimulatedProcessStart(const TParts& AParts) noexcept : FParts(AParts), FTokens(0x50000) {}

  [[nodiscard]] TWinError OpenOwnToken(std::uint32_t AAccess, TToken& AToken) override;
  [[nodiscard]] TWinError DuplicateAsPrimary(const TToken& AToken, TToken& ADuplicate) override;
  [[nodiscard]] TWinError StartAsUser(const TToken& AToken, std::u16string_view ACommand, std::uint32_t AFlags,
                                      TProcessInfo& AProcess) override;
  [[nodiscard]] TWinError StartAsSelf(std::u16string_view ACommand, std::uint32_t AFlags,
                                      TProcessInfo& AProcess) override;
  [[nodiscard]] TWinError OpenByShell(std::u16string_view AProgram, std::u16string_view AParameters,
                                      std::int32_t AShow) override;
  void CloseValue(TTokenTag, std::uintptr_t AToken) noexcept override;

  /// Describes a program; the first description that fits a call counts. A program that has no file gets an empty one.
  void Describe(TSimulatedProgram AProgram);
  /// From now on no program can be started as a user: the result of every such call, or Success to lift that.
  void RefuseUserStarts(TWinError AResult);
  /// What was tried to be started so far, in order; what programs start themselves is not listed.
  [[nodiscard]] std::vector<TSimulatedStart> Starts();
  /// Tokens that are open.
  [[nodiscard]] std::size_t OpenHandleCount();

 private:
  [[nodiscard]] TWinError Start(std::u16string_view ACommand, TProcessInfo& AProcess);
  [[nodiscard]] TWinError StartFile(std::u16string_view AFile, std::u16string_view ACommand, TProcessInfo& AProcess);
  [[nodiscard]] std::u16string FindProgram(std::u16string_view ACommand);
  [[nodiscard]] bool FindDescription(std::u16string_view APath, std::u16string_view ACommand,
                                     TSimulatedProgram& AProgram);
  void Play(std::uint32_t AProcessId, const TSimulatedProgram& AProgram);
  void MakeChanges(const TSimulatedProgram& AProgram);
  template <class TEvent>
  void After(std::uint32_t ADelay, std::uint32_t AProcessId, TEvent AEvent);
  void Log(TSimulatedStart AStart);

  const TParts FParts;
  std::mutex FMutex;
  THandleTable<bool> FTokens;  // whether it is a primary token
  std::vector<TSimulatedProgram> FPrograms;
  TWinError FUserStarts = WinError::Success;
  std::vector<TSimulatedStart> FStarts;
};

}  // namespace varcolin
