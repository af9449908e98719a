// Loaded libraries and resource files of a simulated machine.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "intf/intf_Base.h"
#include "platform/Modules.h"
#include "platform/simulated/SimulatedFiles.h"
#include "support/uText.h"

namespace varcolin {

/// Libraries that can be loaded are the registered ones, which live in the host's folder, those of Windows itself
/// (loaded without exports) and executables on the machine's drives (likewise). Any thread.
class TSimulatedModules final : public IModules {
 public:
  TSimulatedModules(TSimulatedFiles& AFiles, const TSimulatedFacts& AFacts);
  TSimulatedModules(const TSimulatedModules&) = delete;
  TSimulatedModules& operator=(const TSimulatedModules&) = delete;

  [[nodiscard]] TWinError LoadModule(std::u16string_view AName, TModule& AModule) override;
  [[nodiscard]] TWinError FindExport(const TModule& AModule, std::string_view AName, TProcedure& AProcedure) override;
  [[nodiscard]] TWinError LoadAsResource(std::u16string_view APath, TModule& AModule) override;
  [[nodiscard]] TWinError LoadStringResource(const TModule& AModule, std::uint32_t AId, std::uint32_t ALimit,
                                             std::u16string& AText) override;
  [[nodiscard]] TWinError QueryDllVersion(std::u16string_view AName, TDllVersion& AVersion) override;
  [[nodiscard]] TWinError GetHostPath(std::u16string& APath) override;
  [[nodiscard]] TWinError GetOwnPath(std::u16string& APath) override;
  void CloseValue(TModuleTag, std::uintptr_t AModule) noexcept override;

  /// Makes a library loadable whose export "GetInstance" is AEntry. AName: with its extension.
  void RegisterModule(std::u16string_view AName, TGetInstance AEntry);
  /// How often a library is loaded at the moment.
  [[nodiscard]] std::size_t LoadCount(std::u16string_view AName);
  /// The host's executable, a full path; the library lies in the same folder.
  void SetHostPath(std::u16string_view APath);
  /// The file that a name stands for when the system searches for it: beside the host, in the system's folders and
  /// along the path. A name with a folder is not searched for. Empty when there is no such file.
  [[nodiscard]] std::u16string SearchFile(std::u16string_view AName);
  /// Libraries and resource files that are loaded.
  [[nodiscard]] std::size_t OpenHandleCount();

 private:
  struct TLoaded {
    std::u16string Name;  // without a folder for what is registered; empty for a resource file
    TGetInstance Entry = nullptr;
    TFileBytes Resources;
  };

  // these need the lock
  [[nodiscard]] std::u16string_view HostFolder() const noexcept;
  [[nodiscard]] std::u16string FindFile(std::u16string_view AName);
  [[nodiscard]] TWinError FindModule(std::u16string_view AName, TLoaded& AModule);

  TSimulatedFiles& FFiles;
  const TVersionFacts FVersion;
  const bool FIs64BitProcess;
  const std::uint16_t FLanguage;
  std::vector<std::u16string> FSearchFolders;
  std::mutex FMutex;
  std::u16string FHostPath;
  std::map<std::u16string, TGetInstance, TTextLess> FRegistered;
  THandleTable<TLoaded> FLoaded;
};

}  // namespace varcolin
