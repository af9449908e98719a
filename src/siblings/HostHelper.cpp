// The host helper: folders, paths, versions and file-system redirection.
#include <algorithm>
#include <limits>
#include <vector>

#include "platform/Files.h"
#include "platform/SystemFacts.h"
#include "siblings/HelperParts.h"
#include "siblings/PathText.h"
#include "siblings/SiblingLibrary.h"
#include "siblings/SuiteFacts.h"
#include "siblings/VersionResource.h"
#include "support/uDateTime.h"
#include "support/uInterfacedObject.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::uint64_t MaxSize = std::numeric_limits<std::int64_t>::max();

/// The pattern for everything in AFolder. A path near the length limit of plain paths gets the prefix that lifts it.
std::u16string EverythingIn(std::u16string_view AFolder) {
  constexpr std::size_t plainLimit = 240;
  const bool isOnDrive = AFolder.size() > 2 && AFolder[1] == u':' && AFolder[2] == u'\\';
  std::u16string pattern(AFolder.size() > plainLimit && isOnDrive ? u"\\\\?\\" : u"");
  return pattern.append(AFolder).append(u"*");
}

/// Size of the files below AFolder. A folder that cannot be listed counts as empty. Folders wait in a list of their
/// own, so no depth of nesting exhausts the stack; links are not followed, so the walk ends.
std::int64_t SizeBelow(IFiles& AFiles, std::u16string_view AFolder) {
  std::uint64_t total = 0;
  std::vector<std::u16string> waiting{NormalizePathText(IncludeTrailingPathDelimiter(AFolder))};
  while (!waiting.empty()) {
    const std::u16string folder = std::move(waiting.back());
    waiting.pop_back();
    TFindHandle walk;
    TFoundFile found;
    for (TWinError code = AFiles.FindFirst(EverythingIn(folder), walk, found); code == WinError::Success;
         code = AFiles.FindNext(walk, found)) {
      if (!found.Facts.IsFolder()) {
        total += std::min(found.Facts.Size, MaxSize - total);
      } else if (found.Name != u"." && found.Name != u".." &&
                 (found.Facts.Attributes & FileAttribute::ReparsePoint) == 0) {
        waiting.push_back(folder + found.Name + u"\\");
      }
    }
  }
  return static_cast<std::int64_t>(total);
}

class THostHelper final : public TInterfacedObject<IHelper> {
 public:
  explicit THostHelper(const TMachine& AMachine) : FMachine(AMachine) {}

  void VARCOLIN_CALL GetWindowsFolder(TOleString* AResult) override {
    ReturnText(AResult, [&] {
      std::u16string folder;
      (void)FMachine.System.GetWindowsFolder(folder);
      return std::u16string(ExcludeTrailingPathDelimiter(folder));
    });
  }

  void VARCOLIN_CALL GetDataFolder(TOleString* AResult) override {
    ReturnText(AResult, [&] { return SuiteDataFolder(FMachine); });
  }

  void VARCOLIN_CALL GetSystemFolder(TOleString* AResult) override {
    ReturnText(AResult, [&] {
      std::u16string folder;
      if (FMachine.System.GetSystemFolder(folder) != WinError::Success) return std::u16string();
      return IncludeTrailingPathDelimiter(ExcludeTrailingPathDelimiter(folder));
    });
  }

  bool VARCOLIN_CALL IsWow64() override {
    return Guarded(false, [&] {
      bool answer = false;
      return FMachine.System.QueryWow64(answer) == WinError::Success && answer;
    });
  }

  TNativeUInt VARCOLIN_CALL DisableRedirection() override {
    return Guarded<TNativeUInt>(0, [&] {
      TNativeUInt oldValue = 0;
      (void)FMachine.Files.DisableRedirection(oldValue);
      return oldValue;
    });
  }

  void VARCOLIN_CALL RevertRedirection(TNativeUInt AOldValue) override {
    GuardedCall([&] { (void)FMachine.Files.RevertRedirection(AOldValue); });
  }

  void VARCOLIN_CALL GetNameWithoutExtension(const char16_t* APath, TOleString* AResult) override {
    ReturnText(AResult, [&] {
      std::u16string_view name = ExtractFileName(TextOf(APath));
      name.remove_suffix(ExtractFileExt(name).size());
      return name;
    });
  }

  void VARCOLIN_CALL NormalizePath(const char16_t* APath, TOleString* AResult) override {
    ReturnText(AResult, [&] { return NormalizePathText(TextOf(APath)); });
  }

  void VARCOLIN_CALL SetDebugMode(bool AOn) override {
    GuardedCall([&] { WriteUserNumber(FMachine, Suite::DebugModeKey, Suite::DebugModeValue, AOn ? 1 : 0); });
  }

  bool VARCOLIN_CALL IsDebugMode() override {
    return Guarded(false, [&] { return ReadUserNumber(FMachine, Suite::DebugModeKey, Suite::DebugModeValue) == 1U; });
  }

  std::int32_t VARCOLIN_CALL GetIconIndexPart(const char16_t* AText) override {
    return SplitIconLocation(TextOf(AText)).Index;
  }

  void VARCOLIN_CALL GetIconFilePart(const char16_t* AText, TOleString* AResult) override {
    ReturnText(AResult, [&] { return SplitIconLocation(TextOf(AText)).File; });
  }

  std::int64_t VARCOLIN_CALL GetSizeOfFile(const char16_t* APath) override {
    return Guarded<std::int64_t>(0, [&] {
      TFileFacts facts;
      if (FMachine.Files.GetFacts(TextOf(APath), facts) != WinError::Success || facts.IsFolder())
        return std::int64_t{0};
      return static_cast<std::int64_t>(std::min(facts.Size, MaxSize));
    });
  }

  void VARCOLIN_CALL FileTimeToDateTime(const TFileTimeWords* ATime, TDateTime* AResult) override {
    if (AResult == nullptr) return;
    *AResult = ATime == nullptr
                   ? 0
                   : varcolin::FileTimeToDateTime({std::uint64_t{ATime->High} << 32 | std::uint64_t{ATime->Low}});
  }

  std::int64_t VARCOLIN_CALL GetFolderSize(const char16_t* APath) override {
    return Guarded<std::int64_t>(0, [&] {
      const std::u16string_view folder = TextOf(APath);
      return folder.empty() ? 0 : SizeBelow(FMachine.Files, folder);
    });
  }

  void VARCOLIN_CALL GetVersionValue(const char16_t* APath, const char16_t* AName, TOleString* AResult) override {
    ReturnText(AResult, [&] { return ReadVersion(APath).Value(TextOf(AName)); });
  }

  void VARCOLIN_CALL GetVersionLanguage(const char16_t* APath, TOleString* AResult) override {
    ReturnText(AResult, [&] {
      std::u16string name;
      // 0 is the neutral language: such a file is in none, the system would answer with its own
      if (const std::uint16_t language = ReadVersion(APath).Language().value_or(0); language != 0) {
        (void)FMachine.System.GetLocaleText(language, LocaleInfo::Language, name);
      }
      return name;
    });
  }

 private:
  TVersionResource ReadVersion(const char16_t* APath) {
    std::vector<std::byte> data;
    (void)FMachine.Files.ReadVersionResource(TextOf(APath), data);
    return TVersionResource(data);
  }

  TMachine FMachine;
};

}  // namespace

TInterfaceRef<IHelper> MakeHostHelper(const TMachine& AMachine) { return MakeObject<THostHelper, IHelper>(AMachine); }

}  // namespace varcolin
