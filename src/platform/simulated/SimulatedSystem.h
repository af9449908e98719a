// What a simulated machine says of itself.
#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "platform/SystemFacts.h"
#include "platform/simulated/SimulatedFacts.h"

namespace varcolin {

class TSimulatedClock;

/// Any thread.
class TSimulatedSystem final : public ISystemFacts {
 public:
  TSimulatedSystem(TSimulatedClock& AClock, TSimulatedFacts AFacts);

  [[nodiscard]] TWinError GetVersionFacts(TVersionFacts& AFacts) override;
  [[nodiscard]] TWinError ProcessorArchitecture(bool ANative, std::uint16_t& AArchitecture) override;
  [[nodiscard]] TWinError GetProductType(std::uint32_t AMajor, std::uint32_t AMinor, std::uint32_t ASpMajor,
                                         std::uint32_t ASpMinor, std::uint32_t& AType) override;
  [[nodiscard]] TWinError QueryWow64(bool& AIsWow64) override;
  [[nodiscard]] std::int32_t SystemMetric(std::int32_t AIndex) override;
  [[nodiscard]] TWinError GetLocaleText(std::uint32_t ALocale, std::uint32_t AType, std::u16string& AText) override;
  [[nodiscard]] TWinError GetLocaleTextByName(std::u16string_view ALocale, std::uint32_t AType,
                                              std::u16string& AText) override;
  [[nodiscard]] TWinError AnsiToText(std::span<const std::byte> ABytes, std::u16string& AText) override;
  [[nodiscard]] TWinError GetVariable(std::u16string_view AName, std::u16string& AValue) override;
  [[nodiscard]] TWinError ExpandVariables(std::u16string_view AText, std::u16string& AResult) override;
  [[nodiscard]] TWinError GetWindowsFolder(std::u16string& APath) override;
  [[nodiscard]] TWinError GetSystemFolder(std::u16string& APath) override;
  [[nodiscard]] TFileTime UniversalTime() override;
  [[nodiscard]] TWinError ToLocalTime(TFileTime ATime, TFileTime& ALocal) override;
  [[nodiscard]] std::u16string ErrorText(TWinError ACode) override;

  /// Sets a variable of the process; an empty value removes it. What other facilities derived from the environment
  /// when the machine was made stays.
  void SetVariable(std::u16string_view AName, std::u16string_view AValue);

 private:
  TSimulatedClock& FClock;
  const TSimulatedFacts FFacts;
  std::mutex FMutex;
  TEnvironment FEnvironment;
};

/// The English text of a Windows error code; empty when the table does not have it.
[[nodiscard]] std::u16string_view EnglishErrorText(TWinError ACode) noexcept;

}  // namespace varcolin
