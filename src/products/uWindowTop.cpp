#include "products/uWindowTop.h"

#include <algorithm>
#include <utility>

#include "platform/Processes.h"
#include "support/uExceptions.h"
#include "support/uPaths.h"
#include "support/uText.h"
#include "support/uWindowsExt.h"

namespace varcolin {

void TWindowTopItem::ShowWindow() const {
  if (FWindowHandle == 0) return;
  ITopWindows& windows = *TWindowTopCollection::FFacilities.Windows;
  TWindowFacts facts;
  if (windows.GetWindowFacts(FWindowHandle, facts) == WinError::Success && facts.IsMinimised) {
    windows.RestoreWindow(FWindowHandle);
  }
  windows.BringToTop(FWindowHandle);
}

void TWindowTopCollection::Load(ITopWindows& AWindows, IProcesses& AProcesses, IIcons& AIcons) noexcept {
  FFacilities = {&AWindows, &AProcesses, &AIcons};
}

void TWindowTopCollection::Unload() noexcept { FFacilities = {}; }

TWindowTopCollection::TWindowTopCollection(const std::vector<std::u16string>* AProcList)
    : FNeedCloseProcess(AProcList) {
  constexpr std::int32_t iconSize = 16;
  constexpr std::int32_t capacity = 5;
  TWinError code = FFacilities.Icons->MakeImageList(iconSize, iconSize, capacity, capacity, FIconList);
  std::vector<TWindowHandle> windows;
  if (code == WinError::Success) code = FFacilities.Windows->EnumTopWindows(windows);
  if (code != WinError::Success) throw EOSError(code, u"");
  for (const TWindowHandle window : windows) AddWindow(window);
  if (FNeedCloseProcess != nullptr) AddWindowless();
  FNeedCloseProcess = nullptr;
}

bool TWindowTopCollection::IsNeeded(std::u16string_view AFileName) const {
  return FNeedCloseProcess == nullptr ||
         std::ranges::find(*FNeedCloseProcess, LowerCase(AFileName)) != FNeedCloseProcess->end();
}

// A window that goes away meanwhile, or whose process may not be looked into, is passed over.
void TWindowTopCollection::AddWindow(TWindowHandle AWindow) {
  TWindowFacts facts;
  if (FFacilities.Windows->GetWindowFacts(AWindow, facts) != WinError::Success) return;
  if (facts.Parent != 0 || (facts.Style & WindowStyle::SysMenu) == 0) return;
  TWindowTopItem item;
  item.FWindowHandle = AWindow;
  item.FProcessID = facts.ProcessId;
  item.FWindowCaption = WindowsExt::GetWindowText(AWindow);
  if (item.FWindowCaption.empty()) return;

  TProcess process;
  if (FFacilities.Processes->OpenToRead(facts.ProcessId, process) != WinError::Success) return;
  std::u16string path = WindowsExt::GetModuleFileNameEx(process);
  if (path.empty()) path = WindowsExt::GetProcessImageFileName(process);
  item.FFileName = ExtractFileName(path);
  if (!IsNeeded(item.FFileName)) return;
  // a program that lives in a tool window
  if ((facts.StyleEx & WindowStyleEx::ToolWindow) != 0 && !SameText(item.FFileName, u"skype.exe")) return;

  TIcon icon;
  const bool hasIcon = FFacilities.Windows->CopySmallIcon(AWindow, icon) == WinError::Success &&
                       FFacilities.Icons->AppendIcon(FIconList, icon, item.FIconIndex) == WinError::Success;
  if (hasIcon || facts.IsVisible) FItems.push_back(std::move(item));
}

void TWindowTopCollection::AddWindowless() {
  const auto processes = WindowsExt::WTSEnumerateProcesses();
  for (const std::u16string& name : *FNeedCloseProcess) {
    const auto isName = [&](const auto& AText) { return SameText(AText, name); };
    if (std::ranges::any_of(FItems, isName, &TWindowTopItem::FFileName)) continue;
    if (std::ranges::none_of(processes, isName, &TProcessEntry::Name)) continue;
    TWindowTopItem item;
    item.FFileName = name;
    item.FWindowCaption = name;
    FItems.push_back(std::move(item));
  }
}

}  // namespace varcolin
