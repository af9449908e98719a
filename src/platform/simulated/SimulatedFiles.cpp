#include "platform/simulated/SimulatedFiles.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <utility>

#include "platform/simulated/PeResources.h"
#include "platform/simulated/SimulatedClock.h"
#include "platform/simulated/SimulatedFiles.Parts.h"

namespace varcolin {
namespace {

constexpr TWinError CannotResolveName = 1921;  // ERROR_CANT_RESOLVE_FILENAME
constexpr int MaxLinks = 63;
constexpr std::uint64_t MaxLoadedFile = std::uint64_t{1} << 30;
constexpr std::uint32_t SettableAttributes =
    FileAttribute::ReadOnly | FileAttribute::Hidden | FileAttribute::System | FileAttribute::Archive;

TWinError ReadHostFile(const std::filesystem::path& APath, std::uint64_t ASize, std::vector<std::byte>& AData) {
  std::ifstream stream(APath, std::ios::binary);
  if (!stream) return WinError::AccessDenied;
  std::vector<std::byte> data(static_cast<std::size_t>(ASize));
  stream.read(reinterpret_cast<char*>(data.data()), static_cast<std::streamsize>(data.size()));
  if (stream.bad()) return WinError::AccessDenied;
  data.resize(static_cast<std::size_t>(stream.gcount()));  // it may have shrunk since
  AData = std::move(data);
  return WinError::Success;
}

}  // namespace

TSimulatedFiles::TSimulatedFiles(TSimulatedClock& AClock, TSimulatedSync& ASync, const TSimulatedFacts& AFacts)
    : FClock(AClock), FIsRedirected(AFacts.Is64Bit() && AFacts.IsWow64), FWalks(0x10000), FWatches(ASync) {
  const TEnvironment environment = EnvironmentOf(AFacts);
  const std::u16string_view windows = VariableOf(environment, u"SystemRoot");
  FRedirector = TRedirector(windows, AFacts.IsVista());
  FCurrentFolder = u"C:\\";
  SetCurrentFolder(std::u16string(windows) + u"\\System32");
  AddFolder(u"C:\\");
}

TSimulatedFiles::~TSimulatedFiles() {
  std::vector<std::unique_ptr<TNode>> roots;
  for (auto& [letter, root] : FDrives) roots.push_back(std::move(root));
  Destroy(std::move(roots));
}

// Level by level: folders may lie deeper in one another than a recursion could follow.
void TSimulatedFiles::Destroy(std::vector<std::unique_ptr<TNode>> ANodes) {
  while (!ANodes.empty()) {
    const std::unique_ptr<TNode> node = std::move(ANodes.back());
    ANodes.pop_back();
    for (auto& [name, child] : node->Children) ANodes.push_back(std::move(child));
  }
}

TWinError TSimulatedFiles::Resolve(std::u16string_view APath, bool AWildcards, TResolvedPath& AResult) {
  const TWinError error = ResolvePath(APath, FCurrentFolder, AWildcards, AResult);
  if (error != WinError::Success) return error;
  if (FIsRedirected && !FUnredirected.contains(std::this_thread::get_id())) FRedirector.Redirect(AResult);
  return WinError::Success;
}

TWinError TSimulatedFiles::Find(const TResolvedPath& APath, bool AFollowLast, TFound& AFound) {
  AFound = {};
  AFound.Path = APath;
  std::vector<std::u16string>& parts = AFound.Path.Parts;
  for (int links = 0; links <= MaxLinks; ++links) {
    const auto drive = FDrives.find(AFound.Path.Drive);
    if (drive == FDrives.end()) return WinError::PathNotFound;
    AFound.Parent = nullptr;
    AFound.Node = drive->second.get();
    bool followed = false;
    for (std::size_t i = 0; i < parts.size() && !followed; ++i) {
      const bool isLast = i + 1 == parts.size();
      if (!AFound.Node->IsFolder()) return WinError::PathNotFound;
      if (AFound.Node->IsDenied) return WinError::AccessDenied;
      AFound.Parent = AFound.Node;
      const auto child = AFound.Parent->Children.find(parts[i]);
      if (child == AFound.Parent->Children.end()) {
        AFound.Node = nullptr;
        return isLast ? WinError::FileNotFound : WinError::PathNotFound;
      }
      AFound.Node = child->second.get();
      parts[i] = AFound.Node->Name;
      if (AFound.Node->IsLink() && (!isLast || AFollowLast)) {
        TResolvedPath target;
        const TWinError error = ResolvePath(AFound.Node->LinkTarget, FCurrentFolder, false, target);
        if (error != WinError::Success) return error;
        target.Parts.insert(target.Parts.end(), parts.begin() + static_cast<std::ptrdiff_t>(i) + 1, parts.end());
        target.TrailingBackslash = AFound.Path.TrailingBackslash;
        AFound.Path = std::move(target);
        followed = true;
      }
    }
    if (followed) continue;
    if (AFound.Path.TrailingBackslash && !AFound.Node->IsFolder()) return WinError::InvalidName;
    return WinError::Success;
  }
  return CannotResolveName;
}

TWinError TSimulatedFiles::Locate(std::u16string_view APath, bool AFollowLast, TFound& AFound) {
  TResolvedPath path;
  const TWinError error = Resolve(APath, false, path);
  return error != WinError::Success ? error : Find(path, AFollowLast, AFound);
}

TWinError TSimulatedFiles::GetFacts(std::u16string_view APath, TFileFacts& AFacts) {
  const std::lock_guard lock(FMutex);
  TFound found;
  const TWinError error = Locate(APath, false, found);
  if (error == WinError::Success) AFacts = found.Node->Facts();
  return error;
}

TWinError TSimulatedFiles::FindFirst(std::u16string_view APattern, TFindHandle& AHandle, TFoundFile& AFile) {
  TWalk walk;
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    TResolvedPath path;
    TWinError error = Resolve(APattern, true, path);
    if (error != WinError::Success) return error;
    TFound found;
    if (path.Parts.empty() || path.TrailingBackslash) {
      // a folder's own path with a backslash names no entry
      error = Find(path, true, found);
      return error == WinError::Success ? WinError::FileNotFound : error;
    }
    const std::u16string pattern = std::move(path.Parts.back());
    path.Parts.pop_back();
    error = Find(path, true, found);
    if (error == WinError::FileNotFound) return WinError::PathNotFound;
    if (error != WinError::Success) return error;
    if (!found.Node->IsFolder()) return WinError::InvalidFolderName;
    if (found.Node->IsDenied) return WinError::AccessDenied;
    if (pattern.find_first_of(u"*?") == std::u16string::npos) {
      const auto child = found.Node->Children.find(pattern);
      if (child != found.Node->Children.end()) walk.Files.push_back({child->second->Name, child->second->Facts()});
    } else {
      const TNode* const parent = found.Parent != nullptr ? found.Parent : found.Node;
      if (!found.Path.Parts.empty()) {
        if (MatchesPattern(pattern, u".")) walk.Files.push_back({u".", found.Node->Facts()});
        if (MatchesPattern(pattern, u"..")) walk.Files.push_back({u"..", parent->Facts()});
      }
      for (const auto& [name, child] : found.Node->Children) {
        if (MatchesPattern(pattern, name)) walk.Files.push_back({child->Name, child->Facts()});
      }
    }
    if (walk.Files.empty()) return WinError::FileNotFound;
    AFile = std::move(walk.Files.front());
    walk.Next = 1;
    handle = FWalks.Add(std::move(walk));
  }
  AHandle = TFindHandle(*this, handle);
  return WinError::Success;
}

TWinError TSimulatedFiles::FindNext(const TFindHandle& AHandle, TFoundFile& AFile) {
  const std::lock_guard lock(FMutex);
  TWalk* const walk = FWalks.Find(AHandle.Value());
  if (walk == nullptr) return WinError::InvalidHandle;
  if (walk->Next >= walk->Files.size()) return WinError::NoMoreFiles;
  AFile = std::move(walk->Files[walk->Next++]);
  return WinError::Success;
}

void TSimulatedFiles::CloseValue(TFindTag, std::uintptr_t AHandle) noexcept {
  const std::lock_guard lock(FMutex);
  FWalks.Remove(AHandle);
}

TWinError TSimulatedFiles::FindContent(std::u16string_view APath, TNode*& ANode) {
  TFound found;
  const TWinError error = Locate(APath, true, found);
  if (error != WinError::Success) return error;
  if (found.Node->IsFolder()) return found.Path.TrailingBackslash ? WinError::PathNotFound : WinError::AccessDenied;
  if (found.Node->IsDenied) return WinError::AccessDenied;
  if (found.Node->IsInUse) return WinError::SharingViolation;
  ANode = found.Node;
  return WinError::Success;
}

TWinError TSimulatedFiles::FindRealPath(std::u16string_view APath, std::u16string& ARealPath) {
  const std::lock_guard lock(FMutex);
  TFound found;
  const TWinError error = Locate(APath, true, found);
  if (error == WinError::Success) ARealPath = found.Path.Text();
  return error;
}

TWinError TSimulatedFiles::LoadBytes(std::u16string_view APath, TFileBytes& ABytes) {
  std::filesystem::path host;
  std::uint64_t size = 0;
  {
    const std::lock_guard lock(FMutex);
    TNode* node = nullptr;
    const TWinError error = FindContent(APath, node);
    if (error != WinError::Success) return error;
    if (node->HostPath.empty()) {
      node->JoinTail();
      ABytes = node->Bytes;
      return WinError::Success;
    }
    host = node->HostPath;
    size = node->Size;
  }
  if (size > MaxLoadedFile) return WinError::NotEnoughMemory;
  const auto data = std::make_shared<std::vector<std::byte>>();
  const TWinError error = ReadHostFile(host, size, *data);
  if (error == WinError::Success) ABytes = {data, *data};
  return error;
}

TWinError TSimulatedFiles::ReadWithin(std::u16string_view APath, std::size_t ALimit, TWinError ATooLarge,
                                      std::vector<std::byte>& AData) {
  TFileFacts facts;
  {
    // asked first so that a file past the limit is never read
    const std::lock_guard lock(FMutex);
    TNode* node = nullptr;
    const TWinError error = FindContent(APath, node);
    if (error != WinError::Success) return error;
    facts = node->Facts();
  }
  if (facts.Size > ALimit) return ATooLarge;
  TFileBytes bytes;
  const TWinError error = LoadBytes(APath, bytes);
  if (error != WinError::Success) return error;
  if (bytes.Data.size() > ALimit) return ATooLarge;
  AData.assign(bytes.Data.begin(), bytes.Data.end());
  return WinError::Success;
}

TWinError TSimulatedFiles::ReadWhole(std::u16string_view APath, std::size_t ALimit, std::vector<std::byte>& AData) {
  return ReadWithin(APath, ALimit, WinError::NotEnoughMemory, AData);
}

TWinError TSimulatedFiles::ReadWholeDenyWrite(std::u16string_view APath, std::size_t ALimit,
                                              std::vector<std::byte>& AData) {
  return ReadWithin(APath, ALimit, WinError::FileTooLarge, AData);
}

TWinError TSimulatedFiles::ReadVersionResource(std::u16string_view APath, std::vector<std::byte>& AData) {
  TFileBytes bytes;
  const TWinError error = LoadBytes(APath, bytes);
  if (error != WinError::Success) return error;
  const std::optional<TPeResources> resources = TPeResources::Open(bytes.Data);
  if (!resources || !resources->HasResources()) return WinError::ResourceDataNotFound;
  const std::optional<std::span<const std::byte>> version = resources->At(PeResource::Version, 0);
  if (!version) return WinError::ResourceTypeNotFound;
  AData.assign(version->begin(), version->end());
  return WinError::Success;
}

TWinError TSimulatedFiles::DisableRedirection(std::uintptr_t& AOldValue) {
  if (!FIsRedirected) return WinError::InvalidFunction;
  const std::lock_guard lock(FMutex);
  AOldValue = std::exchange(FUnredirected[std::this_thread::get_id()], 1);
  return WinError::Success;
}

TWinError TSimulatedFiles::RevertRedirection(std::uintptr_t AOldValue) {
  if (!FIsRedirected) return WinError::InvalidFunction;
  const std::lock_guard lock(FMutex);
  if (AOldValue == 0) {
    FUnredirected.erase(std::this_thread::get_id());
  } else {
    FUnredirected[std::this_thread::get_id()] = AOldValue;
  }
  return WinError::Success;
}

TWinError TSimulatedFiles::FindOrAddFile(std::u16string_view APath, TFound& AFound) {
  const TWinError error = Locate(APath, true, AFound);
  if (error == WinError::FileNotFound && AFound.Parent != nullptr) {
    if (AFound.Path.TrailingBackslash) return WinError::PathNotFound;
    AFound.Node = &AddNode(*AFound.Parent, AFound.Path.Parts.back(), FileAttribute::Archive);
    AFound.IsNew = true;
  } else if (error != WinError::Success) {
    return error;
  }
  const TNode& node = *AFound.Node;
  if (node.IsFolder()) return AFound.Path.TrailingBackslash ? WinError::PathNotFound : WinError::AccessDenied;
  if (node.IsDenied || (node.Attributes & FileAttribute::ReadOnly) != 0) return WinError::AccessDenied;
  return WinError::Success;
}

TWinError TSimulatedFiles::WriteWhole(std::u16string_view APath, std::span<const std::byte> AData) {
  const auto data = std::make_shared<const std::vector<std::byte>>(AData.begin(), AData.end());
  const std::lock_guard lock(FMutex);
  TFound found;
  const TWinError error = FindOrAddFile(APath, found);
  if (error != WinError::Success) return error;
  TNode& node = *found.Node;
  // replacing a hidden or system file would need the same attributes again
  if ((node.Attributes & (FileAttribute::Hidden | FileAttribute::System)) != 0) return WinError::AccessDenied;
  if (node.IsInUse) return WinError::SharingViolation;
  node.SetBytes({data, *data});
  node.Attributes = FileAttribute::Archive;
  node.LastWriteTime = node.LastAccessTime = FClock.Now();
  Log(EFileChange::Written, found);
  return WinError::Success;
}

TWinError TSimulatedFiles::AppendBytes(std::u16string_view APath, std::span<const std::byte> AData) {
  const std::lock_guard lock(FMutex);
  TFound found;
  const TWinError error = FindOrAddFile(APath, found);
  if (error != WinError::Success) return error;
  TNode& node = *found.Node;
  if (node.IsInUse) return WinError::SharingViolation;
  if (!node.HostPath.empty()) {
    if (node.Size > MaxLoadedFile) return WinError::NotEnoughMemory;
    const auto data = std::make_shared<std::vector<std::byte>>();
    const TWinError unread = ReadHostFile(node.HostPath, node.Size, *data);
    if (unread != WinError::Success) return unread;
    node.SetBytes({data, *data});
  }
  node.Tail.insert(node.Tail.end(), AData.begin(), AData.end());
  node.Size += AData.size();
  node.Attributes |= FileAttribute::Archive;
  node.LastWriteTime = node.LastAccessTime = FClock.Now();
  Log(EFileChange::Written, found);
  return WinError::Success;
}

TWinError TSimulatedFiles::RemoveFile(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  TFound found;
  const TWinError error = Locate(APath, false, found);
  if (error != WinError::Success) return error;
  const TNode& node = *found.Node;
  if (node.IsFolder() || node.IsDenied || (node.Attributes & FileAttribute::ReadOnly) != 0) {
    return WinError::AccessDenied;
  }
  if (node.IsInUse) return WinError::SharingViolation;
  Log(EFileChange::Removed, found);
  found.Parent->Children.erase(found.Parent->Children.find(found.Path.Parts.back()));
  return WinError::Success;
}

TWinError TSimulatedFiles::MakeFolder(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  TFound found;
  const TWinError error = Locate(APath, false, found);
  if (error == WinError::Success || error == WinError::InvalidName) {
    if (found.Node == nullptr) return error;  // the text was no path
    return found.Parent == nullptr ? WinError::AccessDenied : WinError::AlreadyExists;
  }
  if (error != WinError::FileNotFound || found.Parent == nullptr) return error;
  found.Node = &AddNode(*found.Parent, found.Path.Parts.back(), FileAttribute::Folder);
  Log(EFileChange::FolderMade, found);
  return WinError::Success;
}

TWinError TSimulatedFiles::RemoveFolder(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  TFound found;
  const TWinError error = Locate(APath, false, found);
  if (error != WinError::Success) return error;
  const TNode& node = *found.Node;
  if (!node.IsFolder()) return WinError::InvalidFolderName;
  if (found.Parent == nullptr || node.IsDenied || (node.Attributes & FileAttribute::ReadOnly) != 0) {
    return WinError::AccessDenied;
  }
  if (node.IsInUse) return WinError::SharingViolation;
  if (!node.Children.empty()) return WinError::FolderNotEmpty;
  Log(EFileChange::FolderRemoved, found);
  found.Parent->Children.erase(found.Parent->Children.find(found.Path.Parts.back()));
  return WinError::Success;
}

TWinError TSimulatedFiles::SetAttributes(std::u16string_view APath, std::uint32_t AAttributes) {
  const std::lock_guard lock(FMutex);
  TFound found;
  const TWinError error = Locate(APath, false, found);
  if (error != WinError::Success) return error;
  TNode& node = *found.Node;
  if (node.IsDenied) return WinError::AccessDenied;
  const std::uint32_t kind = node.Attributes & (FileAttribute::Folder | FileAttribute::ReparsePoint);
  const std::uint32_t attributes = kind | (AAttributes & SettableAttributes);
  node.Attributes = attributes == 0 ? FileAttribute::Normal : attributes;
  Log(EFileChange::AttributesSet, found);
  return WinError::Success;
}

TSimulatedFiles::TNode& TSimulatedFiles::AddNode(TNode& AParent, std::u16string_view AName, std::uint32_t AAttributes) {
  auto node = std::make_unique<TNode>();
  node->Name = AName;
  node->Attributes = AAttributes;
  node->CreationTime = node->LastAccessTime = node->LastWriteTime = FClock.Now();
  TNode& added = *node;
  AParent.Children.insert_or_assign(std::u16string(AName), std::move(node));
  return added;
}

void TSimulatedFiles::Log(EFileChange AKind, const TFound& AFound) {
  using namespace FileNotify;
  static constexpr std::uint32_t Changes[] = {Size | LastWrite, FileName, FolderName, FolderName, Attributes};
  FChanges.push_back({AKind, AFound.Path.Text()});
  FWatches.Notify(AFound.Path, Changes[static_cast<std::size_t>(AKind)] | (AFound.IsNew ? FileName : 0U));
}

TWinError TSimulatedFiles::WatchFolder(std::u16string_view APath, bool ASubtree, std::uint32_t AFilter,
                                       TFolderWatch& AWatch) {
  if (AFilter == 0) return WinError::InvalidParameter;
  std::uintptr_t value = 0;
  {
    const std::lock_guard lock(FMutex);
    TFound found;
    const TWinError error = Locate(APath, true, found);
    if (error != WinError::Success) return error;
    if (!found.Node->IsFolder()) return WinError::InvalidParameter;
    if (found.Node->IsDenied) return WinError::AccessDenied;
    value = FWatches.Add(std::move(found.Path), ASubtree, AFilter);
  }
  AWatch = TFolderWatch(*this, value);  // outside the lock: this may end the watch that was there
  return WinError::Success;
}

TWinError TSimulatedFiles::RearmWatch(const TFolderWatch& AWatch) {
  const std::lock_guard lock(FMutex);
  const TResolvedPath* const folder = FWatches.FolderOf(AWatch.Value());
  if (folder == nullptr) return WinError::InvalidHandle;
  TFound found;
  if (Find(*folder, true, found) != WinError::Success) return WinError::AccessDenied;
  FWatches.Rearm(AWatch.Value());
  return WinError::Success;
}

void TSimulatedFiles::CloseValue(TFolderWatchTag, std::uintptr_t AWatch) noexcept {
  const std::lock_guard lock(FMutex);
  FWatches.Remove(AWatch);
}

std::vector<TFileChange> TSimulatedFiles::Changes() {
  const std::lock_guard lock(FMutex);
  return FChanges;
}

std::size_t TSimulatedFiles::OpenHandleCount() {
  const std::lock_guard lock(FMutex);
  return FWalks.Count() + FWatches.Count() + FUnredirected.size();
}

}  // namespace varcolin
