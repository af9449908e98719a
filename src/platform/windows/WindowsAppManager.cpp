#include "platform/windows/WindowsAppManager.h"

#include <bit>
#include <memory>

#include "platform/windows/ShellApps.h"
#include "platform/windows/WindowsApi.h"

namespace varcolin {

namespace {

/// The interface behind a handle value.
template <class I>
[[nodiscard]] I& At(std::uintptr_t AValue) noexcept {
  return *reinterpret_cast<I*>(AValue);
}

struct TTaskMemory {
  void operator()(wchar_t* AText) const noexcept { CoTaskMemFree(AText); }
};

}  // namespace

TWinError TWindowsAppManager::EnumInstalledApps(TInstalledApps& AApps) {
  void* apps = nullptr;
  const HRESULT result = CoCreateInstance(std::bit_cast<CLSID>(EnumInstalledAppsClass), nullptr, CLSCTX_INPROC_SERVER,
                                          std::bit_cast<GUID>(IShellEnumInstalledApps::IID), &apps);
  if (FAILED(result)) return FromResult(result);
  AApps = TInstalledApps(*this, reinterpret_cast<std::uintptr_t>(apps));
  return WinError::Success;
}

TWinError TWindowsAppManager::NextApp(const TInstalledApps& AApps, TInstalledApp& AApp) {
  if (!AApps) return WinError::InvalidHandle;
  IShellInstalledApp* app = nullptr;
  if (At<IShellEnumInstalledApps>(AApps.Value()).Next(&app) != ResultOk || app == nullptr) return WinError::NoMoreItems;
  AApp = TInstalledApp(*this, reinterpret_cast<std::uintptr_t>(app));
  return WinError::Success;
}

TWinError TWindowsAppManager::GetSlowAppInfo(const TInstalledApp& AApp, TSlowAppInfo& AInfo) {
  if (!AApp) return WinError::InvalidHandle;
  TShellSlowAppInfo info{};
  const TResultCode result = At<IShellInstalledApp>(AApp.Value()).GetSlowAppInfo(&info);
  if (result < ResultOk) return FromResult(result);
  const std::unique_ptr<wchar_t, TTaskMemory> image(info.Image);
  AInfo = {info.Size,
           {std::uint64_t{info.LastUsedHigh} << 32 | info.LastUsedLow},
           info.TimesUsed,
           image ? std::u16string(FromWide(image.get())) : std::u16string()};
  return WinError::Success;
}

void TWindowsAppManager::CloseValue(TInstalledAppsTag, std::uintptr_t AApps) noexcept {
  At<IInterface>(AApps).Release();
}

void TWindowsAppManager::CloseValue(TInstalledAppTag, std::uintptr_t AApp) noexcept { At<IInterface>(AApp).Release(); }

}  // namespace varcolin
