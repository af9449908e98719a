#include "platform/simulated/SimulatedMachine.h"

#include <stdexcept>

namespace varcolin {

TSimulatedMachine::TSimulatedMachine(const TSimulatedFacts& AFacts)
    : FFacts(AFacts),
      FClock(AFacts.Now),
      FSync(FClock),
      FRegistry(FClock, FSync, {AFacts.Is64Bit(), AFacts.Is64Bit() && AFacts.IsWow64, AFacts.UserSid}),
      FFiles(FClock, FSync, FFacts),
      FSystem(FClock, FFacts),
      FModules(FFiles, FFacts),
      FShell(FFacts),
      FIcons(FFiles),
      FProcesses(FClock, FFacts),
      FWindows(FIcons),
      FStarts({FClock, FFiles, FModules, FProcesses, FRegistry, FWindows}),
      FXml(FCom),
      FApps(FClock, FCom) {
  AddStandardFolders();
  for (const TSimulatedProgram& program : FFacts.Programs) FStarts.Describe(program);
}

TMachine TSimulatedMachine::Facilities() noexcept {
  return {FSync,      FRegistry, FFiles,   FSystem,   FModules, FShell, FIcons,
          FProcesses, FStarts,   FWindows, FMessages, FCom,     FXml,   FApps};
}

std::size_t TSimulatedMachine::OpenHandleCount() {
  return FSync.OpenHandleCount() + FRegistry.OpenHandleCount() + FFiles.OpenHandleCount() + FModules.OpenHandleCount() +
         FShell.OpenHandleCount() + FIcons.OpenHandleCount() + FProcesses.OpenHandleCount() +
         FStarts.OpenHandleCount() + FCom.OpenHandleCount() + FApps.OpenHandleCount();
}

void TSimulatedMachine::SetHostPath(std::u16string_view APath) {
  FModules.SetHostPath(APath);
  FProcesses.SetOwnPath(APath);
}

void TSimulatedMachine::AddStandardFolders() {
  const TEnvironment environment = EnvironmentOf(FFacts);
  const auto add = [&](std::u16string_view APath) {
    try {
      FFiles.AddFolder(APath);
    } catch (const std::invalid_argument&) {
      // an environment may name what is no folder; then there is none
    }
  };
  for (const char16_t* const name :
       {u"SystemRoot", u"ProgramFiles", u"ProgramFiles(x86)", u"CommonProgramFiles", u"CommonProgramFiles(x86)",
        u"USERPROFILE", u"APPDATA", u"LOCALAPPDATA", u"ALLUSERSPROFILE", u"ProgramData", u"PUBLIC", u"TEMP", u"TMP"}) {
    if (const std::u16string_view path = VariableOf(environment, name); !path.empty()) add(path);
  }
  const std::u16string windows(VariableOf(environment, u"SystemRoot"));
  add(windows + u"\\System32");
  if (FFacts.Is64Bit()) {
    add(windows + u"\\SysWOW64");
    add(u"C:\\Program Files\\Common Files");
  }
  constexpr std::int32_t LastCsidl = 46;
  for (std::int32_t csidl = 0; csidl <= LastCsidl; ++csidl) {
    std::u16string path;
    if (FShell.GetSpecialFolder(csidl, path) == WinError::Success) add(path);
  }
}

}  // namespace varcolin
