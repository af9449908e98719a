#include "products/uItemProduct.h"

#include <cmath>

#include "platform/SystemFacts.h"
#include "products/uExecuteActionThread.h"
#include "registry/uRegistryEx.h"
#include "services/uDLLGlobals.h"
#include "services/uFileUtils.h"
#include "services/uStatisticsLog.h"
#include "support/uExceptions.h"
#include "support/uFormat.h"
#include "support/uPaths.h"

namespace varcolin {

namespace {

using EStrings = TKeySnapshot::EStrings;
constexpr EStrings Plain = EStrings::Plain;
constexpr EStrings Expandable = EStrings::PlainOrExpandable;

/// One way to fill a text field: the value names in the order in which they are consulted. A later name counts only
/// when the earlier ones are absent.
struct TTextRule {
  std::u16string TItemProduct::*Field;
  EStrings Kinds;
  std::u16string_view Name;
  std::u16string_view Fallback = {};
};

constexpr TTextRule TextRules[] = {
    {&TItemProduct::FPublisher, Plain, u"Publisher"},
    {&TItemProduct::FInstallSource, Expandable, u"InstallSource"},
    {&TItemProduct::FContact, Plain, u"Contact"},
    {&TItemProduct::FComments, Plain, u"Comments"},
    {&TItemProduct::FURLReadMe, Expandable, u"Readme"},
    {&TItemProduct::FURLHelpLink, Expandable, u"HelpLink"},
    {&TItemProduct::FURLSupport, Expandable, u"URLInfoAbout", u"MoreInfoURL"},
    {&TItemProduct::FPhoneSupport, Plain, u"HelpTelephone"},
    {&TItemProduct::FURLUpdateInfo, Expandable, u"URLUpdateInfo"},
    {&TItemProduct::FDisplayIcon, Expandable, u"DisplayIcon", u"ProductIcon"},
};

std::optional<std::u16string> FirstText(const TKeySnapshot& AValues, EStrings AKinds, std::u16string_view AName,
                                        std::u16string_view AFallback) {
  auto text = AValues.Text(AName, AKinds);
  if (!text && !AFallback.empty()) text = AValues.Text(AFallback, AKinds);
  return text;
}

/// A version part: a string as it is, a number as its decimal text.
std::optional<std::u16string> VersionPart(const TKeySnapshot& AValues, std::u16string_view AName) {
  if (auto text = AValues.Text(AName, Plain)) return text;
  if (const auto number = AValues.Number(AName)) return IntToStr(*number);
  return std::nullopt;
}

std::u16string ReadVersion(const TKeySnapshot& AValues) {
  if (auto text = AValues.Text(u"DisplayVersion", Plain)) return *text;
  std::u16string version = VersionPart(AValues, u"VersionMajor").value_or(u"");
  if (const auto minor = VersionPart(AValues, u"VersionMinor")) version.append(u".").append(*minor);
  return version;
}

std::u16string ReadLanguage(const TKeySnapshot& AValues) {
  std::u16string language;
  if (const auto text = AValues.Text(u"Language", Plain)) {
    language = DLLGlobals::LocaleIDToString(*text);
  } else if (const auto number = AValues.Number(u"Language")) {
    language = DLLGlobals::LocaleIDToString(*number);
  }
  if (language.empty()) {
    if (const auto text = AValues.Text(u"ShellUITransformLanguage", Plain)) {
      language = DLLGlobals::LocaleIDToString(*text);
    }
  }
  return language;
}

TDateTime ReadInstallDate(const TKeySnapshot& AValues) {
  const auto text = FirstText(AValues, Plain, u"InstallDate", u"Installed");
  return text ? DLLGlobals::DecodeDateTimeRegistry(*text) : 0;
}

bool ProgramFileExists(const std::u16string& ACommand) {
  return FileUtils::FileExists(FileUtils::PrepareCmdFileName(ACommand));
}

/// Runs one stage of reading: the silent abort passes, any other exception is logged and ends the stage.
template <class TStage>
void LogFailures(TStage AStage) {
  try {
    AStage();
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    StatisticsLog::AddErrorLn();
  }
}

}  // namespace

std::u16string_view TextOf(TTypeUninstallLocation ALocation) noexcept {
  constexpr std::u16string_view Names[] = {u"ulExeInfo", u"ulRegistryUninstall", u"ulVistaUpdate"};
  return Names[static_cast<std::size_t>(ALocation)];
}

void TItemProduct::Load(ISystemFacts& ASystem) noexcept { FSystem = &ASystem; }

void TItemProduct::Unload() noexcept { FSystem = nullptr; }

TItemProduct::TItemProduct(TTypeUninstallLocation ALoc) : FLocation(ALoc) {
  if (ALoc != TTypeUninstallLocation::ulRegistryUninstall && ALoc != TTypeUninstallLocation::ulVistaUpdate) {
    throw EAssertionFailed(u"uItemProduct", 524);
  }
}

void TItemProduct::ReadFastInfo(const TKeyStore& AKeys) {
  if (!FIsNeedReadFastInfo) return;
  FIsNeedReadFastInfo = false;
  LogFailures([&] {
    const std::lock_guard lock(FCSItem);
    DoReadFastInfo(AKeys);
    RefineInstallDate(AKeys);
  });
}

void TItemProduct::ReadSlowInfo() {
  if (!FIsNeedReadSlowInfo) return;
  // the marks change whatever ends the reading, the silent abort included
  struct TDone {
    TItemProduct& Item;
    ~TDone() {
      Item.FIsChanged.exchange(true);
      Item.FIsNeedReadSlowInfo = false;
    }
  } done{*this};
  LogFailures([&] { DoReadSlowInfo(); });
}

void TItemProduct::DoReadFastInfo(const TKeyStore& AKeys) {
  if (FLocation != TTypeUninstallLocation::ulRegistryUninstall) return;
  for (std::size_t index = 0; index < FRegistryKeys.size(); ++index) {
    const std::u16string& keyText = FRegistryKeys[index];
    // the Windows Installer keeps a product's values in a subkey of the product's key
    static constexpr std::u16string_view Inner = u"InstallProperties";
    auto values = AKeys.Find(keyText);
    std::u16string_view name = ExtractFileName(ExcludeTrailingPathDelimiter(keyText));
    if (!values || values->MayHaveSubKeys()) {
      std::u16string innerText = IncludeTrailingPathDelimiter(keyText);
      innerText.append(Inner).append(u"\\");
      if (auto inner = AKeys.Get(innerText)) {
        values = std::move(inner);
        name = Inner;
      } else if (!values) {
        values = AKeys.Get(keyText);
      }
    }
    if (!values) continue;
    const TProductKey key{*values, name};
    ReadRegistryValues(key);
    if (index == 0) {
      ReadRegistryCommands(key);
      if (FEstimatedSize <= 0) {
        if (const auto kilobytes = values->Number(u"EstimatedSize")) {
          FEstimatedSize = std::int64_t{static_cast<std::int32_t>(*kilobytes)} * 1024;
        }
      }
    }
  }
}

void TItemProduct::ReadRegistryValues(const TProductKey& AKey) {
  const TKeySnapshot& values = AKey.Values;
  if (const auto indirect = values.Text(u"DisplayName_Localized", Expandable)) {
    std::u16string localized = DLLGlobals::ExtractResourceDescription(*indirect);
    if (!localized.empty()) FDisplayName = std::move(localized);
  }
  if (FDisplayName.empty()) FDisplayName = FDisplayNameNative;
  if (FDisplayVersion.empty()) FDisplayVersion = ReadVersion(values);
  ReadInstallLocation(values);
  if (FInstallDate <= 0) FInstallDate = ReadInstallDate(values);
  if (FLanguage.empty()) FLanguage = ReadLanguage(values);
  for (const TTextRule& rule : TextRules) {
    std::u16string& field = this->*rule.Field;
    if (!field.empty()) continue;
    if (auto text = FirstText(values, rule.Kinds, rule.Name, rule.Fallback)) field = std::move(*text);
  }
}

void TItemProduct::ReadInstallLocation(const TKeySnapshot& AValues) {
  if (!FInstallLocation.empty()) return;
  if (auto folder = FirstText(AValues, Expandable, u"InstallLocation", u"Inno Setup: App Path")) {
    FInstallLocation = std::move(*folder);
  }
  if (!FInstallLocation.empty()) return;
  const auto command = AValues.Text(u"UninstallString", Expandable);
  if (!command) return;
  std::u16string program;
  std::u16string parameters;
  FileUtils::ParseCommand(*command, program, parameters);
  const std::u16string_view folder = ExtractFilePath(program);
  if (StartsText(FileUtils::ProgramFilesX32(), folder) || StartsText(FileUtils::ProgramFilesX64(), folder)) {
    FInstallLocation = folder;
  }
}

void TItemProduct::ReadRegistryCommands(const TProductKey& AKey) {
  const TKeySnapshot& values = AKey.Values;
  const auto take = [&](std::u16string& AField, std::u16string_view AName, std::u16string_view AFallback = {}) {
    if (auto text = FirstText(values, Expandable, AName, AFallback)) AField = std::move(*text);
  };
  take(FCmdUninstallQuiet, u"QuietUninstallString");
  take(FCmdUninstall, u"UninstallString", u"UninstallPath");
  take(FCmdModify, u"ModifyPath");
  take(FCmdRepair, u"RepairPath");
  const bool noModify = values.Flag(u"NoModify");
  const bool noRepair = values.Flag(u"NoRepair");
  const bool noRemove = values.Flag(u"NoRemove");
  FIsWinInstaller = values.Flag(u"WindowsInstaller");

  const auto offer = [this](TPossibleActions AAction, bool AOffered) {
    if (AOffered) FPossibleActions |= ActionBit(AAction);
  };
  using enum TPossibleActions;
  offer(paUninstallQuiet, !FCmdUninstallQuiet.empty() && ProgramFileExists(FCmdUninstallQuiet));
  if (FIsWinInstaller) {
    offer(paUninstall, !noRemove);
    offer(paModify, !noModify);
    offer(paRepair, !noRepair);
  } else if (!FCmdUninstall.empty() && FCmdModify.empty() && FCmdRepair.empty()) {
    if (noRepair || noRemove) {
      offer(paUninstall, ProgramFileExists(FCmdUninstall));
    } else {
      offer(paModifyRemove, true);
    }
  } else {
    offer(paUninstall, !FCmdUninstall.empty() && !noRemove && ProgramFileExists(FCmdUninstall));
    offer(paModify, !FCmdModify.empty() && !noModify);
    offer(paRepair, !FCmdRepair.empty() && !noRepair);
  }
}

void TItemProduct::RefineInstallDate(const TKeyStore& AKeys) {
  for (const std::u16string& keyText : FRegistryKeys) {
    const auto key = AKeys.Get(keyText);
    if (!key || !key->LastWriteTime()) continue;
    TFileTime local;
    TDateTime written = 0;
    if (System().ToLocalTime(*key->LastWriteTime(), local) == WinError::Success) {
      written = DLLGlobals::FileTimeToDateTime(local);
    }
    if (FInstallDate == 0 || std::trunc(written) == std::trunc(FInstallDate)) {
      FInstallDate = written;
      return;
    }
  }
}

std::u16string TItemProduct::GetActionCommand(TPossibleActions AAction) const {
  using enum TPossibleActions;
  struct TRow {
    TPossibleActions Action;
    std::u16string TItemProduct::*Command;
    std::u16string_view Installer;
  };
  static constexpr TRow Rows[] = {
      {paUninstall, &TItemProduct::FCmdUninstall, u"msiexec.exe /x %s"},
      {paUninstallQuiet, &TItemProduct::FCmdUninstallQuiet, {}},
      {paModify, &TItemProduct::FCmdModify, u"msiexec.exe /i %s"},
      {paRepair, &TItemProduct::FCmdRepair, u"msiexec.exe /fa %s"},
      {paModifyRemove, &TItemProduct::FCmdUninstall, u"msiexec.exe /i %s"},
  };
  for (const TRow& row : Rows) {
    if (row.Action != AAction) continue;
    const bool byInstaller = FIsWinInstaller && !FGUID.empty() && !row.Installer.empty();
    std::u16string command = byInstaller ? std::u16string() : this->*row.Command;
    if (command.empty() && !FGUID.empty() && !row.Installer.empty()) command = Format(row.Installer, {FGUID});
    return command;
  }
  return {};
}

bool TItemProduct::IsUserCommand() const {
  if (FRegistryKeys.empty()) return false;
  std::uint32_t view = 0;
  ERegistryRoot root = ERegistryRoot::LocalMachine;
  std::u16string path;
  std::u16string name;
  TRegistryEx::ExtractKeyParams(FRegistryKeys.front(), view, root, path, name);
  return root == ERegistryRoot::CurrentUser || root == ERegistryRoot::Users;
}

TItemProduct::~TItemProduct() { StopActionThread(); }

bool TItemProduct::RunAction(TPossibleActions& AAction, TNativeUInt& AWndHandle) {
  const std::lock_guard lock(FActionThreadCS);
  AWndHandle = 0;
  if (FActionThread) {
    AAction = FActionThread->Action();
    try {
      AWndHandle = FActionThread->GetWindowTop();
    } catch (const std::exception&) {
      StatisticsLog::AddError();  // without its window the action runs all the same
    }
    return false;
  }
  if (AAction < TPossibleActions::paRemoveFromRegistry) {
    FEndedThread.reset();
    FActionThread = std::make_unique<TExecuteActionThread>(*this, AAction);
    try {
      FActionThread->Start();
    } catch (...) {
      FActionThread.reset();
      throw;
    }
  }
  return true;
}

void TItemProduct::TerminateAction() {
  const std::lock_guard lock(FActionThreadCS);
  if (FActionThread) FActionThread->Terminate();
}

void TItemProduct::StopActionThread() {
  std::unique_lock lock(FActionThreadCS);
  if (FActionThread) FActionThread->Terminate();
  FActionEnds.wait(lock, [this] { return FActionThread == nullptr; });
  FEndedThread.reset();
}

void TItemProduct::ActionEnded() {
  const std::lock_guard lock(FActionThreadCS);
  FEndedThread = std::move(FActionThread);
  FActionEnds.notify_all();
}

}  // namespace varcolin
