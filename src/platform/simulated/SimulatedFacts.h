// What is fixed about a simulated machine before anything runs on it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/SystemFacts.h"
#include "platform/Types.h"
#include "platform/simulated/SimulatedPrograms.h"
#include "support/uText.h"

namespace varcolin {

/// Environment variables by name; names are compared without regard to case.
using TEnvironment = std::map<std::u16string, std::u16string, TTextLess>;

/// Facts of a simulated machine. The defaults describe a 64-bit Windows 7 workstation with service pack 1 on which the
/// 32-bit library runs under WOW64.
struct TSimulatedFacts {
  TSimulatedFacts();

  /// Version record; ServicePackText is empty and ServicePackMajor 0 without a service pack.
  TVersionFacts Version;
  /// What GetProductInfo tells (Windows Vista and later).
  std::uint32_t ProductInfo = 1;
  /// The machine's own architecture.
  std::uint16_t NativeArchitecture = Architecture::Amd64;
  /// Whether the process is a 32-bit one on a 64-bit system.
  bool IsWow64 = true;

  std::u16string UserName = u"User";
  std::u16string UserSid = u"S-1-5-21-1-2-3-1001";
  bool UserIsAdmin = true;

  /// Name of the user's locale, one of the table of Locales.h.
  std::u16string LocaleName = u"en-US";
  /// Minutes that local time is ahead of universal time.
  std::int32_t TimeZoneMinutes = 0;
  /// When the machine's clock starts; universal time.
  TFileTime Now;

  /// Variables set over those that follow from the other facts; an empty value removes a variable.
  TEnvironment Environment;
  /// Numbers that GetSystemMetrics tells, over the simulator's own.
  std::map<std::int32_t, std::int32_t> Metrics;
  /// What programs do that are started on the machine.
  std::vector<TSimulatedProgram> Programs;

  [[nodiscard]] bool Is64Bit() const noexcept { return NativeArchitecture != Architecture::Intel; }
  /// Windows Vista or later.
  [[nodiscard]] bool IsVista() const noexcept { return Version.Major >= 6; }
};

/// The whole environment of a process on a machine: what follows from the facts, with AFacts.Environment over it.
[[nodiscard]] TEnvironment EnvironmentOf(const TSimulatedFacts& AFacts);

/// A variable's value, empty when it is not set.
[[nodiscard]] std::u16string_view VariableOf(const TEnvironment& AEnvironment, std::u16string_view AName);

}  // namespace varcolin
