#include "library/uWindowsFeatures.h"

#include <string>
#include <vector>

#include "platform/ProcessStart.h"
#include "platform/Sync.h"
#include "products/uWindowTop.h"
#include "services/uDLLGlobals.h"
#include "services/uFileUtils.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uFormat.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {

namespace {

/// Lets the calling thread see the real system folder for a scope, where it is a redirected one.
class TRedirectionOff {
 public:
  explicit TRedirectionOff(IHelper& AHelper) : FHelper(AHelper), FIsOff(WinVersionInfo::IsWow64Process()) {
    if (FIsOff) FOldValue = FHelper.DisableRedirection();
  }
  TRedirectionOff(const TRedirectionOff&) = delete;
  TRedirectionOff& operator=(const TRedirectionOff&) = delete;
  ~TRedirectionOff() {
    if (FIsOff) FHelper.RevertRedirection(FOldValue);
  }

 private:
  IHelper& FHelper;
  bool FIsOff;
  TNativeUInt FOldValue = 0;
};

}  // namespace

void WindowsFeatures::Load(ISync& ASync, IProcessStart& AStarts) noexcept {
  FSync = &ASync;
  FStarts = &AStarts;
}

void WindowsFeatures::Unload() noexcept {
  FSync = nullptr;
  FStarts = nullptr;
}

void WindowsFeatures::Show() {
  const auto helper = DLLGlobals::Helper();
  const TRedirectionOff redirectionOff(*helper);
  TOleText folderText;
  helper->GetSystemFolder(folderText.Receive());
  const std::u16string folder(folderText.View());

  const std::u16string wizard = Format(u"%sSysocmgr.exe", {folder});
  std::u16string program = Format(u"%sOptionalFeatures.exe", {folder});
  std::u16string_view parameters;
  if (!FileUtils::FileExists(program)) {
    program = wizard;
    parameters = u"/i:%windir%\\inf\\sysoc.inf";
    if (!FileUtils::FileExists(program)) {
      program = Format(u"%sCompMgmtLauncher.exe", {folder});
      parameters = {};
    }
  }

  // the wizard holds this mutex as long as it runs
  if (TNamedMutex running; FSync->OpenNamedMutex(u"sysoc", running) == WinError::Success) {
    running.Close();
    const std::vector<std::u16string> names = {LowerCase(ExtractFileName(wizard))};
    const TWindowTopCollection windows(&names);
    if (!windows.Items().empty()) windows.Items().front().ShowWindow();
    return;
  }
  static_cast<void>(FStarts->OpenByShell(program, parameters, ShowCommand::Show));
}

}  // namespace varcolin
