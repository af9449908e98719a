#include "contract/MachineUnderTest.h"

#include <vector>

#include "platform/simulated/SimulatedMachine.h"

namespace varcolin::testing {

namespace {

std::vector<TSimulatedProgram> Calls() {
  const auto call = [](std::u16string_view AArguments, std::uint32_t ATime, std::uint32_t AExitCode) {
    TSimulatedProgram program;
    program.Path = TestProgram();
    program.Arguments = AArguments;
    program.Runs = ATime;
    program.ExitCode = AExitCode;
    return program;
  };
  std::vector<TSimulatedProgram> calls = {call(u"run 0 7", 0, 7), call(u"run 400", 400, 0),
                                          call(u"run 20000", 20000, 0), call(u"window Contract 20000", 20000, 0)};
  calls.back().Windows.push_back({{u"Contract"}, 0, {}});
  return calls;
}

}  // namespace

std::u16string TestProgram() { return u"C:\\Test programs\\test_program.exe"; }

TMachine& MachineUnderTest() {
  static TSimulatedMachine machine;
  static TMachine facilities = [] {
    for (const TSimulatedProgram& call : Calls()) machine.Starts().Describe(call);
    machine.Clock().SetMode(EClockMode::Running);
    return machine.Facilities();
  }();
  return facilities;
}

bool IsRealMachine() { return false; }

bool IsWine() { return false; }

}  // namespace varcolin::testing
