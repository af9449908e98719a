#include "contract/MachineUnderTest.h"
#include "platform/simulated/SimulatedMachine.h"

namespace varcolin::testing {

TMachine& MachineUnderTest() {
  static TSimulatedMachine machine;
  static TMachine facilities = [] {
    machine.Clock().SetMode(EClockMode::Running);
    return machine.Facilities();
  }();
  return facilities;
}

bool IsRealMachine() { return false; }

bool IsWine() { return false; }

}  // namespace varcolin::testing
