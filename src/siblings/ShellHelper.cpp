// The shell helper and the suite's facts.
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/Shell.h"
#include "platform/SystemFacts.h"
#include "siblings/CommandLine.h"
#include "siblings/HelperParts.h"
#include "siblings/SiblingLibrary.h"
#include "siblings/SuiteFacts.h"
#include "support/uInterfacedObject.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

class TShellHelper final : public TInterfacedObject<iShellHelper> {
 public:
  explicit TShellHelper(const TMachine& AMachine) : FMachine(AMachine) {}

  void VARCOLIN_CALL ExpandEnvironment(const char16_t* AText, TOleString* AResult) override {
    ReturnText(AResult, [&] { return Expand(TextOf(AText)); });
  }

  void VARCOLIN_CALL GetSpecialFolder(std::int32_t ACsidl, TOleString* AResult) override {
    ReturnText(AResult, [&] {
      std::u16string folder;
      (void)FMachine.Shell.GetSpecialFolder(ACsidl, folder);
      return std::u16string(ExcludeTrailingPathDelimiter(folder));
    });
  }

  void VARCOLIN_CALL GetProgramPart(const char16_t* ACommand, TOleString* AResult) override {
    ReturnText(AResult, [&] {
      return ProgramPart(TextOf(ACommand), [this](std::u16string_view AName) { return IsProgramFile(AName); });
    });
  }

 private:
  std::u16string Expand(std::u16string_view AText) {
    std::u16string result(AText);
    if (AText.find(u'%') != std::u16string_view::npos) (void)FMachine.System.ExpandVariables(AText, result);
    return result;
  }

  /// Whether a name, with or without ".exe", is a file. Names without a folder are not looked up: they would depend on
  /// the current folder of the process.
  bool IsProgramFile(std::u16string_view AName) {
    const std::u16string path = Expand(AName);
    const bool hasDrive = path.size() > 3 && path[1] == u':' && (path[2] == u'\\' || path[2] == u'/');
    return (hasDrive || path.starts_with(u"\\\\")) && (IsFile(path) || IsFile(path + u".exe"));
  }

  bool IsFile(std::u16string_view APath) {
    TFileFacts facts;
    return FMachine.Files.GetFacts(APath, facts) == WinError::Success && !facts.IsFolder();
  }

  TMachine FMachine;
};

class TGlobals final : public TInterfacedObject<IGlobals> {
 public:
  explicit TGlobals(const TMachine& AMachine) : FMachine(AMachine) {}

  void VARCOLIN_CALL GetMakerName(TOleString* AResult) override {
    ReturnText(AResult, [] { return Suite::MakerName; });
  }
  void VARCOLIN_CALL GetProductName(TOleString* AResult) override {
    ReturnText(AResult, [] { return Suite::ProductName; });
  }
  void VARCOLIN_CALL GetProductVersion(TOleString* AResult) override {
    ReturnText(AResult, [] { return FromAscii(VARCOLIN_VERSION); });
  }
  void VARCOLIN_CALL GetNameOfUser(TOleString* AResult) override {
    ReturnText(AResult, [&] {
      std::u16string name;
      (void)FMachine.Processes.GetNameOfUser(name);
      return name;
    });
  }
  void VARCOLIN_CALL GetRegistryRoot(TOleString* AResult) override {
    ReturnText(AResult, [] { return Suite::RegistryRoot; });
  }

 private:
  TMachine FMachine;
};

}  // namespace

TInterfaceRef<iShellHelper> MakeShellHelper(const TMachine& AMachine) {
  return MakeObject<TShellHelper, iShellHelper>(AMachine);
}

TInterfaceRef<IGlobals> MakeGlobals(const TMachine& AMachine) { return MakeObject<TGlobals, IGlobals>(AMachine); }

}  // namespace varcolin
