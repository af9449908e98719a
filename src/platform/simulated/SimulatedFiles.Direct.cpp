// Direct access to the drives: what prepares a machine, and what its other processes do.
#include <stdexcept>
#include <utility>

#include "platform/simulated/SimulatedClock.h"
#include "platform/simulated/SimulatedFiles.Parts.h"
#include "support/uText.h"

namespace varcolin {

TSimulatedFiles::TNode& TSimulatedFiles::Obtain(std::u16string_view APath, std::uint32_t AAttributes) {
  TResolvedPath path;
  const std::u16string text =
      APath.starts_with(u"\\\\?\\") ? std::u16string(APath) : u"\\\\?\\" + std::u16string(APath);
  if (ResolvePath(text, u"C:\\", false, path) != WinError::Success) {
    throw std::invalid_argument("no path of a drive: " + ToUtf8(APath));
  }
  std::unique_ptr<TNode>& root = FDrives[path.Drive];
  if (root == nullptr) {
    root = std::make_unique<TNode>();
    root->Attributes = FileAttribute::Folder | FileAttribute::Hidden | FileAttribute::System;
    root->CreationTime = root->LastAccessTime = root->LastWriteTime = FClock.Now();
  }
  TNode* node = root.get();
  for (std::size_t i = 0; i < path.Parts.size(); ++i) {
    const std::uint32_t attributes = i + 1 == path.Parts.size() ? AAttributes : FileAttribute::Folder;
    const auto child = node->Children.find(path.Parts[i]);
    if (!node->IsFolder()) throw std::invalid_argument("a file stands in the way: " + ToUtf8(APath));
    if (child != node->Children.end()) {
      node = child->second.get();
      continue;
    }
    node = &AddNode(*node, path.Parts[i], attributes);
    if (FWatches.Count() == 0) continue;
    TResolvedPath added = path;
    added.Parts.resize(i + 1);
    FWatches.Notify(added, node->IsFolder() ? FileNotify::FolderName : FileNotify::FileName);
  }
  if (((node->Attributes ^ AAttributes) & FileAttribute::Folder) != 0) {
    throw std::invalid_argument("file and folder of one name: " + ToUtf8(APath));
  }
  return *node;
}

bool TSimulatedFiles::TryFindDirect(std::u16string_view APath, TFound& AFound) {
  TResolvedPath path;
  return ResolvePath(APath, u"C:\\", false, path) == WinError::Success &&
         Find(path, false, AFound) == WinError::Success;
}

TSimulatedFiles::TFound TSimulatedFiles::FindDirect(std::u16string_view APath) {
  TFound found;
  if (!TryFindDirect(APath, found)) throw std::invalid_argument("not on the machine: " + ToUtf8(APath));
  return found;
}

TSimulatedFiles::TNode& TSimulatedFiles::Existing(std::u16string_view APath) { return *FindDirect(APath).Node; }

void TSimulatedFiles::AddFolder(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  Obtain(APath, FileAttribute::Folder);
}

void TSimulatedFiles::AddFile(std::u16string_view APath, std::vector<std::byte> AData) {
  const auto data = std::make_shared<const std::vector<std::byte>>(std::move(AData));
  AddContent(APath, {data, *data});
}

void TSimulatedFiles::AddContent(std::u16string_view APath, TFileBytes ABytes) {
  const std::lock_guard lock(FMutex);
  TFound found;
  const bool isOld = FWatches.Count() != 0 && TryFindDirect(APath, found);
  Obtain(APath, FileAttribute::Archive).SetBytes(std::move(ABytes));
  if (isOld) FWatches.Notify(found.Path, FileNotify::Size | FileNotify::LastWrite);
}

void TSimulatedFiles::RemoveAt(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  const TFound found = FindDirect(APath);
  if (found.Parent == nullptr) throw std::invalid_argument("a drive stays: " + ToUtf8(APath));
  const std::uint32_t change = found.Node->IsFolder() ? FileNotify::FolderName : FileNotify::FileName;
  found.Parent->Children.erase(found.Parent->Children.find(found.Path.Parts.back()));
  FWatches.Notify(found.Path, change);
}

void TSimulatedFiles::AddFile(std::u16string_view APath, std::string_view AText) {
  const std::span<const std::byte> bytes = std::as_bytes(std::span(AText));
  AddFile(APath, std::vector<std::byte>(bytes.begin(), bytes.end()));
}

void TSimulatedFiles::AddHostFile(std::u16string_view APath, std::filesystem::path AHostPath, std::uint64_t ASize) {
  const std::lock_guard lock(FMutex);
  TNode& node = Obtain(APath, FileAttribute::Archive);
  node.SetBytes({});
  node.HostPath = std::move(AHostPath);
  node.Size = ASize;
}

void TSimulatedFiles::AddStaticFile(std::u16string_view APath, std::span<const std::byte> AData) {
  AddContent(APath, {nullptr, AData});
}

void TSimulatedFiles::AddLink(std::u16string_view APath, std::u16string_view ATarget) {
  const std::lock_guard lock(FMutex);
  TNode& node = Obtain(APath, FileAttribute::Folder);
  node.Attributes |= FileAttribute::ReparsePoint;
  node.LinkTarget = ATarget;
}

void TSimulatedFiles::SetTimes(std::u16string_view APath, TFileTime ACreation, TFileTime ALastAccess,
                               TFileTime ALastWrite) {
  const std::lock_guard lock(FMutex);
  TNode& node = Existing(APath);
  node.CreationTime = ACreation;
  node.LastAccessTime = ALastAccess;
  node.LastWriteTime = ALastWrite;
}

void TSimulatedFiles::MarkInUse(std::u16string_view APath, bool AInUse) {
  const std::lock_guard lock(FMutex);
  Existing(APath).IsInUse = AInUse;
}

void TSimulatedFiles::MarkDenied(std::u16string_view APath, bool ADenied) {
  const std::lock_guard lock(FMutex);
  Existing(APath).IsDenied = ADenied;
}

void TSimulatedFiles::SetCurrentFolder(std::u16string_view APath) {
  TResolvedPath path;
  if (ResolvePath(APath, u"C:\\", false, path) != WinError::Success) {
    throw std::invalid_argument("no folder: " + ToUtf8(APath));
  }
  FCurrentFolder = path.Text();
}

void TSimulatedFiles::DropTree(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  TResolvedPath path;
  TFound found;
  if (ResolvePath(APath, u"C:\\", false, path) != WinError::Success) return;
  if (Find(path, false, found) != WinError::Success || found.Parent == nullptr) return;
  auto node = found.Parent->Children.extract(found.Path.Parts.back());
  std::vector<std::unique_ptr<TNode>> nodes;
  nodes.push_back(std::move(node.mapped()));
  Destroy(std::move(nodes));
}

bool TSimulatedFiles::Contains(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  TFound found;
  return TryFindDirect(APath, found);
}

}  // namespace varcolin
