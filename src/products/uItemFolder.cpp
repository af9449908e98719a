#include "products/uItemFolder.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "services/uDLLGlobals.h"
#include "services/uFileUtils.h"
#include "support/uExceptions.h"
#include "support/uPaths.h"
#include "support/uShellLinkInfo.h"
#include "support/uText.h"

namespace varcolin {
namespace {

/// Place of an entry in the list.
using TPosition = std::size_t;

/// Finds the names that occur within a text. The names stand in order, so that all with a common beginning stand
/// together and a text is followed into them unit by unit: the cost of a search is that of the text, not of the names.
class TNamesWithin {
 public:
  /// No name comes twice.
  void Add(std::u16string_view AName, TPosition APosition) {
    FNames.push_back({UpperCase(AName), APosition});
    FIsSorted = false;
  }
  /// The smallest position of a name that occurs in AText, without regard to case.
  [[nodiscard]] std::optional<TPosition> First(std::u16string_view AText) {
    if (!std::exchange(FIsSorted, true)) std::ranges::sort(FNames, {}, &TName::Text);
    const std::u16string text = UpperCase(AText);
    std::optional<TPosition> first;
    for (std::size_t start = 0; start < text.size(); ++start) {
      std::span<const TName> common = FNames;
      for (std::size_t depth = 0; start + depth < text.size() && !common.empty(); ++depth) {
        const int unit = text[start + depth];
        const auto unitOf = [depth](const TName& AName) {
          return depth < AName.Text.size() ? int{AName.Text[depth]} : -1;
        };
        common = std::span(std::ranges::lower_bound(common, unit, {}, unitOf),
                           std::ranges::upper_bound(common, unit, {}, unitOf));
        // of those that begin alike the shortest comes first
        if (common.empty() || common.front().Text.size() != depth + 1) continue;
        first = std::min(first.value_or(common.front().Position), common.front().Position);
      }
    }
    return first;
  }

 private:
  struct TName {
    std::u16string Text;
    TPosition Position;
  };

  std::vector<TName> FNames;
  bool FIsSorted = true;
};

/// The folder of a file in the form in which folders are compared.
std::u16string FolderOf(std::u16string_view AFile) { return IncludeTrailingPathDelimiter(ExtractFilePath(AFile)); }

/// The entries with an index for each question that is asked of them; the first of several entries counts.
class TFolderList {
 public:
  std::recursive_mutex Mutex;

  [[nodiscard]] std::span<const std::unique_ptr<TItemFolder>> Items() const noexcept { return FItems; }
  [[nodiscard]] TItemFolder& At(TPosition APosition) const { return *FItems[APosition]; }

  [[nodiscard]] std::optional<TPosition> ByExecutable(std::u16string_view APath) const {
    return Find(FByExecutable, APath);
  }
  [[nodiscard]] std::optional<TPosition> ByLink(std::u16string_view APath) const { return Find(FByLink, APath); }
  [[nodiscard]] std::optional<TPosition> ByLinkName(std::u16string_view AName) const {
    return Find(FByLinkName, AName);
  }
  /// The entry whose executable or shortcut lies directly in the folder, which has a trailing delimiter.
  [[nodiscard]] std::optional<TPosition> ByFolder(std::u16string_view AFolder) const {
    return Find(FByFolder, AFolder);
  }
  [[nodiscard]] std::optional<TPosition> ByLinkNameWithin(std::u16string_view AName) { return FLinkNames.First(AName); }

  /// Appends an entry, whose shortcut's file and name no longer change.
  TPosition Append(std::unique_ptr<TItemFolder> AItem) {
    const TPosition position = FItems.size();
    const TItemFolder& item = *FItems.emplace_back(std::move(AItem));
    if (!item.FLinkFile.empty()) {
      Enter(FByLink, item.FLinkFile, position);
      Enter(FByFolder, FolderOf(item.FLinkFile), position);
    }
    if (!item.FLinkName.empty() && Enter(FByLinkName, item.FLinkName, position)) {
      FLinkNames.Add(item.FLinkName, position);
    }
    return position;
  }
  /// Gives an entry, which had none, its executable.
  void SetExecutable(TPosition APosition, std::u16string_view APath) {
    FItems[APosition]->FExecutedFile = APath;
    Enter(FByExecutable, std::u16string(APath), APosition);
    Enter(FByFolder, FolderOf(APath), APosition);
  }

 private:
  using TIndex = std::unordered_map<std::u16string, TPosition, TTextHash, TTextEqual>;

  [[nodiscard]] static std::optional<TPosition> Find(const TIndex& AIndex, std::u16string_view AText) {
    const auto found = AIndex.find(AText);
    return found == AIndex.end() ? std::nullopt : std::optional(found->second);
  }
  /// Whether the text is new.
  static bool Enter(TIndex& AIndex, std::u16string AText, TPosition APosition) {
    const auto [entry, isNew] = AIndex.try_emplace(std::move(AText), APosition);
    // an entry may get its executable when later ones have theirs
    if (!isNew) entry->second = std::min(entry->second, APosition);
    return isNew;
  }

  std::vector<std::unique_ptr<TItemFolder>> FItems;
  TIndex FByExecutable;
  TIndex FByLink;
  TIndex FByLinkName;
  TIndex FByFolder;
  TNamesWithin FLinkNames;
};

std::unique_ptr<TFolderList> LoadedList;

TFolderList& List() {
  if (LoadedList == nullptr) throw EAssertionFailed(u"uItemFolder", __LINE__);
  return *LoadedList;
}

/// A shortcut's or program's name without its first bracket group and without the version at its end.
std::u16string CleanName(std::u16string_view AName) {
  std::u16string name(AName);
  if (const std::size_t open = name.find(u'('); open != std::u16string::npos) {
    if (const std::size_t close = name.find(u')', open); close != std::u16string::npos) {
      name.erase(open, close - open + 1);
    }
  }
  if (const std::size_t last = name.find_last_not_of(u" -.0123456789"); last != std::u16string::npos) {
    name.resize(last + 1);
  }
  return std::u16string(Trim(name));
}

/// The full path under which a file, which need not exist, is found.
std::u16string FindFile(std::u16string_view AFile) {
  if (AFile.empty()) return {};
  std::u16string path;
  if (!FileUtils::SearchPath(AFile, path)) path = AFile;
  return FileUtils::CheckFileX64(FileUtils::PrepareFileName(path));
}

const TItemFolder& AddExecutable(std::u16string_view APath) {
  TFolderList& list = List();
  const std::scoped_lock lock(list.Mutex);
  std::optional<TPosition> position = list.ByExecutable(APath);
  if (!position) {
    position = list.Append(std::make_unique<TItemFolder>());
    list.SetExecutable(*position, APath);
  }
  return list.At(*position);
}

/// The entry that a shortcut with this file, name and target belongs to.
std::optional<TPosition> FindShortcut(const TFolderList& AList, std::u16string_view AFile, std::u16string_view AName,
                                      std::u16string_view ATarget) {
  if (const auto known = AList.ByLink(AFile)) return known;
  const auto sharing = ATarget.empty() ? std::nullopt : AList.ByExecutable(ATarget);
  if (!sharing) return std::nullopt;
  const std::u16string& name = AList.At(*sharing).FLinkName;
  return name.empty() || SameText(name, AName) ? sharing : std::nullopt;
}

const TItemFolder& AddShortcut(std::u16string_view AFile) {
  TFolderList& list = List();
  {
    // nothing more is to be learnt from a shortcut whose target is known
    const std::scoped_lock lock(list.Mutex);
    const auto known = list.ByLink(AFile);
    if (known && !list.At(*known).FExecutedFile.empty()) return list.At(*known);
  }
  const TShellLinkInfo link(AFile);
  const std::u16string target = FindFile(link.PathName());
  auto item = std::make_unique<TItemFolder>();
  item->FLinkFile = AFile;
  std::u16string_view name = ExtractFileName(AFile);
  name.remove_suffix(ExtractFileExt(name).size());
  item->FLinkName = CleanName(name);
  item->FIconLocation = link.IconLocation();
  if (!item->FIconLocation.empty()) item->FIconLocation.append(u",").append(IntToStr(link.IconIndex()));

  const std::scoped_lock lock(list.Mutex);
  std::optional<TPosition> position = FindShortcut(list, AFile, item->FLinkName, target);
  if (!position) position = list.Append(std::move(item));
  if (list.At(*position).FExecutedFile.empty() && !target.empty()) list.SetExecutable(*position, target);
  return list.At(*position);
}

/// Reads what the executable's version resource tells, once it is known.
void ReadResource(TItemFolder& AItem) {
  if (AItem.FResourceReaded || AItem.FExecutedFile.empty()) return;
  const auto fill = [&](std::u16string& AField, const char16_t* AName) {
    if (AField.empty()) AField = DLLGlobals::VersionValue(AItem.FExecutedFile, AName);
  };
  fill(AItem.FProductName, u"ProductName");
  fill(AItem.FCompanyName, u"CompanyName");
  fill(AItem.FProductVersion, u"ProductVersion");
  fill(AItem.FProductVersion, u"FileVersion");
  AItem.FTranslations = DLLGlobals::VersionLanguage(AItem.FExecutedFile);
  AItem.FResourceReaded = true;
}

}  // namespace

void TItemFolder::Load() { LoadedList = std::make_unique<TFolderList>(); }

void TItemFolder::Unload() noexcept { LoadedList.reset(); }

std::recursive_mutex& TItemFolder::Mutex() { return List().Mutex; }

std::span<const std::unique_ptr<TItemFolder>> TItemFolder::Items() { return List().Items(); }

const TItemFolder* TItemFolder::AddItem(std::u16string_view AFile) {
  const std::u16string path = FindFile(AFile);
  if (!FileUtils::FileExists(path)) return nullptr;
  return SameText(ExtractFileExt(path), u".lnk") ? &AddShortcut(path) : &AddExecutable(path);
}

const TItemFolder* TItemFolder::ItemByName(std::u16string_view ADisplayName, std::u16string_view AInstallLocation) {
  TFolderList& list = List();
  const std::u16string name = CleanName(ADisplayName);
  const std::scoped_lock lock(list.Mutex);
  std::optional<TPosition> position;
  if (!name.empty()) position = list.ByLinkName(name);
  if (!position && !AInstallLocation.empty()) {
    position = list.ByFolder(IncludeTrailingPathDelimiter(AInstallLocation));
  }
  if (!position && !name.empty()) position = list.ByLinkNameWithin(name);
  if (!position) return nullptr;
  TItemFolder& item = list.At(*position);
  ReadResource(item);
  return &item;
}

}  // namespace varcolin
