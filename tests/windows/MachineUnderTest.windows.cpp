// The contract suites' machine on the Windows target: the one that the tests run on.
#include "contract/MachineUnderTest.h"

#include "platform/windows/WindowsApi.h"
#include "platform/windows/WindowsMachine.h"

namespace varcolin::testing {

TMachine& MachineUnderTest() {
  static TWindowsMachine machine;
  static TMachine facilities = machine.Facilities();
  return facilities;
}

bool IsRealMachine() { return true; }

bool IsWine() {
  // the one export that Wine's ntdll has and no Windows has
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace varcolin::testing
