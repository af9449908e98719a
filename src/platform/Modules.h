// Loaded libraries and the resources of executable files.
#pragma once

#include <string>
#include <string_view>

#include "platform/Types.h"

namespace varcolin {

struct TModuleTag {};
class IModules;

/// A loaded library; it is freed with the handle.
using TModule = THandle<IModules, TModuleTag>;

/// The version that a shell library reports of itself.
struct TDllVersion {
  std::uint32_t Major = 0;
  std::uint32_t Minor = 0;
  std::uint32_t Build = 0;
  std::uint32_t Platform = 0;
};

/// The address of an exported function, to be cast to its real type.
using TProcedure = void (*)();

class IModules {
 public:
  virtual ~IModules() = default;

  /// Loads a library for use, by name with the system's standard search (".dll" is added to a name without an
  /// extension), with the process's error mode set to 0 meanwhile. ModuleNotFound, BadExecutable.
  /// Windows: SetErrorMode, LoadLibraryW.
  [[nodiscard]] virtual TWinError LoadModule(std::u16string_view AName, TModule& AModule) = 0;
  /// Address of an export; ProcedureNotFound. Windows: GetProcAddress.
  [[nodiscard]] virtual TWinError FindExport(const TModule& AModule, std::string_view AName,
                                             TProcedure& AProcedure) = 0;
  /// Loads a file for its resources only. FileNotFound, BadExecutable. Windows: LoadLibraryExW with
  /// LOAD_LIBRARY_AS_IMAGE_RESOURCE.
  [[nodiscard]] virtual TWinError LoadAsResource(std::u16string_view APath, TModule& AModule) = 0;
  /// String resource AId, at most ALimit - 1 UTF-16 units of it. ResourceNameNotFound and others when there is none;
  /// an empty string counts as none. Windows: LoadStringW with a buffer of ALimit units.
  [[nodiscard]] virtual TWinError LoadStringResource(const TModule& AModule, std::uint32_t AId, std::uint32_t ALimit,
                                                     std::u16string& AText) = 0;
  /// What the library's DllGetVersion answers; ModuleNotFound, ProcedureNotFound, or its own failure code.
  /// Windows: LoadLibraryW, DllGetVersion, FreeLibrary.
  [[nodiscard]] virtual TWinError QueryDllVersion(std::u16string_view AName, TDllVersion& AVersion) = 0;
  /// Full path of the host process's executable. Windows: GetModuleFileNameW without a module.
  [[nodiscard]] virtual TWinError GetHostPath(std::u16string& APath) = 0;
  /// Full path of the file that this code was loaded from (the library itself). Windows: GetModuleFileNameW.
  [[nodiscard]] virtual TWinError GetOwnPath(std::u16string& APath) = 0;

  /// Frees a library; called by TModule. Windows: FreeLibrary.
  virtual void CloseValue(TModuleTag, std::uintptr_t AModule) noexcept = 0;
};

}  // namespace varcolin
