// The machine that the contract suites run against. A suite creates what it needs and removes it again, and does not
// care whether the machine is simulated or real.
#pragma once

#include <string>

#include "platform/Machine.h"

namespace varcolin::testing {

/// The machine: one for the whole process, made at the first call. A simulated one is 64-bit Windows 7 with a 32-bit
/// process, and its clock runs.
[[nodiscard]] TMachine& MachineUnderTest();
/// Whether the machine is the one that the process runs on.
[[nodiscard]] bool IsRealMachine();
/// Whether it is Wine, which differs from Windows where a test says so.
[[nodiscard]] bool IsWine();

/// Full path of a program that can be started: "run MILLISECONDS [EXITCODE]" and "window TITLE MILLISECONDS" are calls
/// of it. A simulated machine knows those calls that its list has.
[[nodiscard]] std::u16string TestProgram();

}  // namespace varcolin::testing
