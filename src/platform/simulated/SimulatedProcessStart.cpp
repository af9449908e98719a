#include "platform/simulated/SimulatedProcessStart.h"

#include <algorithm>
#include <utility>

#include "platform/simulated/SimulatedClock.h"
#include "platform/simulated/SimulatedFiles.h"
#include "platform/simulated/SimulatedModules.h"
#include "platform/simulated/SimulatedProcesses.h"
#include "platform/simulated/SimulatedRegistry.h"
#include "platform/simulated/SimulatedTopWindows.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {

TWinError TSimulatedProcessStart::OpenOwnToken(std::uint32_t, TToken& AToken) {
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    handle = FTokens.Add(true);
  }
  AToken = TToken(*this, handle);
  return WinError::Success;
}

TWinError TSimulatedProcessStart::DuplicateAsPrimary(const TToken& AToken, TToken& ADuplicate) {
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    if (FTokens.Find(AToken.Value()) == nullptr) return WinError::InvalidHandle;
    handle = FTokens.Add(true);
  }
  ADuplicate = TToken(*this, handle);
  return WinError::Success;
}

TWinError TSimulatedProcessStart::StartAsUser(const TToken& AToken, std::u16string_view ACommand, std::uint32_t,
                                              TProcessInfo& AProcess) {
  {
    const std::lock_guard lock(FMutex);
    if (FTokens.Find(AToken.Value()) == nullptr) return WinError::InvalidHandle;
    if (FUserStarts != WinError::Success) return FUserStarts;
  }
  return StartAsSelf(ACommand, 0, AProcess);
}

TWinError TSimulatedProcessStart::StartAsSelf(std::u16string_view ACommand, std::uint32_t, TProcessInfo& AProcess) {
  const TWinError result = Start(ACommand, AProcess);
  Log({std::u16string(ACommand), false, result});
  return result;
}

TWinError TSimulatedProcessStart::OpenByShell(std::u16string_view AProgram, std::u16string_view AParameters,
                                              std::int32_t) {
  std::u16string command(AProgram);
  if (!AParameters.empty()) command.append(u" ").append(AParameters);
  const std::u16string file = FParts.Modules.SearchFile(AProgram);
  TProcessInfo process;
  const TWinError result = file.empty() ? WinError::FileNotFound : StartFile(file, command, process);
  Log({std::move(command), true, result});
  return result;
}

void TSimulatedProcessStart::CloseValue(TTokenTag, std::uintptr_t AToken) noexcept {
  const std::lock_guard lock(FMutex);
  FTokens.Remove(AToken);
}

void TSimulatedProcessStart::Describe(TSimulatedProgram AProgram) {
  if (!FParts.Files.Contains(AProgram.Path)) FParts.Files.AddFile(AProgram.Path, std::string_view());
  const std::lock_guard lock(FMutex);
  FPrograms.push_back(std::move(AProgram));
}

void TSimulatedProcessStart::RefuseUserStarts(TWinError AResult) {
  const std::lock_guard lock(FMutex);
  FUserStarts = AResult;
}

std::vector<TSimulatedStart> TSimulatedProcessStart::Starts() {
  const std::lock_guard lock(FMutex);
  return FStarts;
}

std::size_t TSimulatedProcessStart::OpenHandleCount() {
  const std::lock_guard lock(FMutex);
  return FTokens.Count();
}

void TSimulatedProcessStart::Log(TSimulatedStart AStart) {
  const std::lock_guard lock(FMutex);
  FStarts.push_back(std::move(AStart));
}

// The program of a command line as the system finds it: what stands in quotes, else the first prefix up to a blank
// that names a file; a name without an extension gets the usual one. The file's full path, or an empty text.
std::u16string TSimulatedProcessStart::FindProgram(std::u16string_view ACommand) {
  const auto search = [this](std::u16string_view AName) {
    std::u16string name(AName);
    if (ExtractFileExt(name).empty()) name.append(u".exe");
    return FParts.Modules.SearchFile(name);
  };
  if (ACommand.starts_with(u'"')) return search(ACommand.substr(1, ACommand.find(u'"', 1) - 1));
  for (std::size_t end = 0; end < ACommand.size(); ++end) {
    end = std::min(ACommand.find_first_of(u" \t", end), ACommand.size());
    if (end == 0) continue;
    if (std::u16string found = search(ACommand.substr(0, end)); !found.empty()) return found;
  }
  return {};
}

TWinError TSimulatedProcessStart::Start(std::u16string_view ACommand, TProcessInfo& AProcess) {
  if (ACommand.empty()) return WinError::InvalidParameter;
  const std::u16string file = FindProgram(ACommand);
  return file.empty() ? WinError::FileNotFound : StartFile(file, ACommand, AProcess);
}

TWinError TSimulatedProcessStart::StartFile(std::u16string_view AFile, std::u16string_view ACommand,
                                            TProcessInfo& AProcess) {
  std::u16string path;
  if (const TWinError error = FParts.Files.FindRealPath(AFile, path); error != WinError::Success) return error;
  TSimulatedProgram program;
  if (!FindDescription(path, ACommand, program)) return WinError::BadExecutable;
  AProcess = FParts.Processes.StartProcess(path);
  Play(AProcess.ProcessId, program);
  return WinError::Success;
}

bool TSimulatedProcessStart::FindDescription(std::u16string_view APath, std::u16string_view ACommand,
                                             TSimulatedProgram& AProgram) {
  const std::lock_guard lock(FMutex);
  for (const TSimulatedProgram& program : FPrograms) {
    if (!SameText(program.Path, APath)) continue;
    if (!program.Arguments.empty() && FindText(program.Arguments, ACommand) == std::u16string_view::npos) continue;
    AProgram = program;
    return true;
  }
  return false;
}

// Lets AEvent happen if the process still runs then.
template <class TEvent>
void TSimulatedProcessStart::After(std::uint32_t ADelay, std::uint32_t AProcessId, TEvent AEvent) {
  if (ADelay == 0) return AEvent();
  FParts.Clock.Plan(ADelay, [this, AProcessId, event = std::move(AEvent)] {
    if (FParts.Processes.IsRunning(AProcessId)) event();
  });
}

void TSimulatedProcessStart::Play(std::uint32_t AProcessId, const TSimulatedProgram& AProgram) {
  for (const TProgramWindow& window : AProgram.Windows) {
    After(window.After, AProcessId, [this, AProcessId, window] {
      const TWindowHandle handle = FParts.Windows.OpenWindow(AProcessId, window.Window);
      if (!window.Closes) return;
      After(*window.Closes > window.After ? *window.Closes - window.After : 0, AProcessId,
            [this, handle] { FParts.Windows.CloseWindow(handle); });
    });
  }
  for (const TProgramChild& child : AProgram.Starts) {
    After(child.After, AProcessId, [this, command = child.Command] {
      TProcessInfo process;
      static_cast<void>(Start(command, process));  // what cannot be started is the program's trouble
    });
  }
  if (AProgram.ChangesAfter) {
    After(*AProgram.ChangesAfter, AProcessId, [this, AProgram] { MakeChanges(AProgram); });
  }
  if (!AProgram.Runs) return;
  After(*AProgram.Runs, AProcessId, [this, AProcessId, AProgram] {
    if (!AProgram.ChangesAfter) MakeChanges(AProgram);
    FParts.Windows.CloseWindowsOf(AProcessId);
    FParts.Processes.EndProcess(AProcessId, AProgram.ExitCode);
  });
}

void TSimulatedProcessStart::MakeChanges(const TSimulatedProgram& AProgram) {
  for (const std::u16string& key : AProgram.RemovesKeys) FParts.Registry.RemoveTree(key);
  for (const std::u16string& path : AProgram.RemovesFiles) FParts.Files.DropTree(path);
  for (const std::u16string& key : AProgram.CreatesKeys) FParts.Registry.AddKey(key);
  for (const std::u16string& path : AProgram.CreatesFiles) FParts.Files.AddFile(path, std::string_view());
}

}  // namespace varcolin
