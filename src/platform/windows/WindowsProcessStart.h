// IProcessStart over the real Windows calls.
#pragma once

#include "platform/ProcessStart.h"

namespace varcolin {

/// The processes, which own the handles of what is started, outlive the object.
class TWindowsProcessStart final : public IProcessStart {
 public:
  explicit TWindowsProcessStart(IProcesses& AProcesses) noexcept : FProcesses(AProcesses) {}

  [[nodiscard]] TWinError OpenOwnToken(std::uint32_t AAccess, TToken& AToken) override;
  [[nodiscard]] TWinError DuplicateAsPrimary(const TToken& AToken, TToken& ADuplicate) override;
  [[nodiscard]] TWinError StartAsUser(const TToken& AToken, std::u16string_view ACommand, std::uint32_t AFlags,
                                      TProcessInfo& AProcess) override;
  [[nodiscard]] TWinError StartAsSelf(std::u16string_view ACommand, std::uint32_t AFlags,
                                      TProcessInfo& AProcess) override;
  [[nodiscard]] TWinError OpenByShell(std::u16string_view AProgram, std::u16string_view AParameters,
                                      std::int32_t AShow) override;
  void CloseValue(TTokenTag, std::uintptr_t AToken) noexcept override;

 private:
  IProcesses& FProcesses;
};

}  // namespace varcolin
