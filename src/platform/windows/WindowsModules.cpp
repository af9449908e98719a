#include "platform/windows/WindowsModules.h"

#include <algorithm>

#include "platform/windows/OwnModule.h"

namespace varcolin {

namespace {

constexpr std::uint32_t MaxStringResource = 0xFFFF;  // its length is stored in 16 bits

[[nodiscard]] HMODULE ToModule(const TModule& AModule) noexcept { return reinterpret_cast<HMODULE>(AModule.Value()); }

/// Sets the process's error mode for a scope.
class TErrorModeScope {
 public:
  explicit TErrorModeScope(UINT AMode) noexcept : FOld(SetErrorMode(AMode)) {}
  TErrorModeScope(const TErrorModeScope&) = delete;
  TErrorModeScope& operator=(const TErrorModeScope&) = delete;
  ~TErrorModeScope() { SetErrorMode(FOld); }

 private:
  UINT FOld;
};

[[nodiscard]] TWinError ReadModulePath(HMODULE AModule, std::u16string& APath) {
  // A truncated path fills the buffer and, on newer systems, sets the last error beside it.
  return ReadText([&](wchar_t* ABuffer, DWORD ASize) { return GetModuleFileNameW(AModule, ABuffer, ASize); }, APath);
}

}  // namespace

TWinError TWindowsModules::LoadModule(std::u16string_view AName, TModule& AModule) {
  const TApiText name(AName);
  if (!name.IsWhole()) return WinError::ModuleNotFound;
  HMODULE module = nullptr;
  TWinError error = WinError::Success;
  {
    const TErrorModeScope mode(0);
    SetLastError(ERROR_SUCCESS);
    module = LoadLibraryW(name.Get());
    if (module == nullptr) error = LastFailure(WinError::ModuleNotFound);
  }
  if (error == WinError::Success) AModule = TModule(*this, reinterpret_cast<std::uintptr_t>(module));
  return error;
}

TWinError TWindowsModules::FindExport(const TModule& AModule, std::string_view AName, TProcedure& AProcedure) {
  const std::string name(AName);
  SetLastError(ERROR_SUCCESS);
  const FARPROC procedure = GetProcAddress(ToModule(AModule), name.c_str());
  if (procedure == nullptr) return LastFailure(WinError::ProcedureNotFound);
  AProcedure = reinterpret_cast<TProcedure>(procedure);
  return WinError::Success;
}

TWinError TWindowsModules::LoadAsResource(std::u16string_view APath, TModule& AModule) {
  const TApiText path(APath);
  if (!path.IsWhole()) return WinError::InvalidName;
  // Windows XP does not know the image flag; with the data flag beside it no system ever runs the file's code.
  constexpr DWORD asImageResource = 0x20;
  const HMODULE module = LoadLibraryExW(path.Get(), nullptr, asImageResource | LOAD_LIBRARY_AS_DATAFILE);
  if (module == nullptr) return LastFailure(WinError::FileNotFound);
  AModule = TModule(*this, reinterpret_cast<std::uintptr_t>(module));
  return WinError::Success;
}

TWinError TWindowsModules::LoadStringResource(const TModule& AModule, std::uint32_t AId, std::uint32_t ALimit,
                                              std::u16string& AText) {
  if (ALimit == 0) return WinError::InvalidParameter;  // LoadStringW would write a pointer into the buffer
  std::u16string text(std::min(ALimit, MaxStringResource + 1), u'\0');
  SetLastError(ERROR_SUCCESS);
  const int length = LoadStringW(ToModule(AModule), AId, AsWide(text.data()), static_cast<int>(text.size()));
  if (length <= 0) return LastFailure(WinError::ResourceNameNotFound);
  text.resize(static_cast<std::size_t>(length));
  AText = std::move(text);
  return WinError::Success;
}

TWinError TWindowsModules::QueryDllVersion(std::u16string_view AName, TDllVersion& AVersion) {
  struct TVersionInfo {  // DLLVERSIONINFO
    DWORD Size, Major, Minor, Build, Platform;
  };
  static_assert(sizeof(TVersionInfo) == 20);
  TModule module;
  TProcedure procedure = nullptr;
  if (const TWinError error = LoadModule(AName, module); error != WinError::Success) return error;
  if (const TWinError error = FindExport(module, "DllGetVersion", procedure); error != WinError::Success) return error;
  TVersionInfo info{sizeof(TVersionInfo), 0, 0, 0, 0};
  const HRESULT result = reinterpret_cast<HRESULT(CALLBACK*)(TVersionInfo*)>(procedure)(&info);
  if (FAILED(result)) return FromResult(result);
  AVersion = {info.Major, info.Minor, info.Build, info.Platform};
  return WinError::Success;
}

TWinError TWindowsModules::GetHostPath(std::u16string& APath) { return ReadModulePath(nullptr, APath); }

TWinError TWindowsModules::GetOwnPath(std::u16string& APath) { return ReadModulePath(OwnModule(), APath); }

void TWindowsModules::CloseValue(TModuleTag, std::uintptr_t AModule) noexcept {
  FreeLibrary(reinterpret_cast<HMODULE>(AModule));
}

}  // namespace varcolin
