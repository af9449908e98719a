// IModules over the real Windows calls.
#pragma once

#include "platform/Modules.h"

namespace varcolin {

class TWindowsModules final : public IModules {
 public:
  [[nodiscard]] TWinError LoadModule(std::u16string_view AName, TModule& AModule) override;
  [[nodiscard]] TWinError FindExport(const TModule& AModule, std::string_view AName, TProcedure& AProcedure) override;
  [[nodiscard]] TWinError LoadAsResource(std::u16string_view APath, TModule& AModule) override;
  [[nodiscard]] TWinError LoadStringResource(const TModule& AModule, std::uint32_t AId, std::uint32_t ALimit,
                                             std::u16string& AText) override;
  [[nodiscard]] TWinError QueryDllVersion(std::u16string_view AName, TDllVersion& AVersion) override;
  [[nodiscard]] TWinError GetHostPath(std::u16string& APath) override;
  [[nodiscard]] TWinError GetOwnPath(std::u16string& APath) override;
  void CloseValue(TModuleTag, std::uintptr_t AModule) noexcept override;
};

}  // namespace varcolin
