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

std::u16string TestProgram() {
  std::u16string path(32768, u'\0');
  path.resize(GetModuleFileNameW(nullptr, AsWide(path.data()), static_cast<DWORD>(path.size())));
  path.resize(path.rfind(u'\\') + 1);
  return path + u"test_program.exe";
}

bool IsRealMachine() { return true; }

bool IsWine() {
  // the one export that Wine's ntdll has and no Windows has
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace varcolin::testing
