// The drives of a simulated Windows machine. Nothing is ever written to the computer's own disk.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <vector>

#include "platform/Files.h"
#include "platform/simulated/FolderWatches.h"
#include "platform/simulated/SimulatedFacts.h"
#include "platform/simulated/SimulatedHandles.h"
#include "platform/simulated/SimulatedPaths.h"

namespace varcolin {

class TSimulatedClock;
class TSimulatedSync;

/// A file's bytes, kept alive as long as this is.
struct TFileBytes {
  std::shared_ptr<const std::vector<std::byte>> Owner;  ///< null when the bytes live as long as the program
  std::span<const std::byte> Data;
};

enum class EFileChange { Written, Removed, FolderMade, FolderRemoved, AttributesSet };

/// One change that the library made, by the path that was really changed.
struct TFileChange {
  EFileChange Kind;
  std::u16string Path;

  friend bool operator==(const TFileChange&, const TFileChange&) = default;
};

/// Files and folders in memory; the content of an image's files is read from the computer's disk when it is asked for.
/// Any thread, but for SetCurrentFolder.
class TSimulatedFiles final : public IWritableFiles {
 public:
  /// Drive C with nothing on it.
  TSimulatedFiles(TSimulatedClock& AClock, TSimulatedSync& ASync, const TSimulatedFacts& AFacts);
  TSimulatedFiles(const TSimulatedFiles&) = delete;
  TSimulatedFiles& operator=(const TSimulatedFiles&) = delete;
  ~TSimulatedFiles() override;

  [[nodiscard]] TWinError GetFacts(std::u16string_view APath, TFileFacts& AFacts) override;
  [[nodiscard]] TWinError FindFirst(std::u16string_view APattern, TFindHandle& AHandle, TFoundFile& AFile) override;
  [[nodiscard]] TWinError FindNext(const TFindHandle& AHandle, TFoundFile& AFile) override;
  [[nodiscard]] TWinError ReadWhole(std::u16string_view APath, std::size_t ALimit,
                                    std::vector<std::byte>& AData) override;
  [[nodiscard]] TWinError ReadWholeDenyWrite(std::u16string_view APath, std::size_t ALimit,
                                             std::vector<std::byte>& AData) override;
  [[nodiscard]] TWinError ReadVersionResource(std::u16string_view APath, std::vector<std::byte>& AData) override;
  [[nodiscard]] TWinError DisableRedirection(std::uintptr_t& AOldValue) override;
  [[nodiscard]] TWinError RevertRedirection(std::uintptr_t AOldValue) override;
  [[nodiscard]] TWinError WatchFolder(std::u16string_view APath, bool ASubtree, std::uint32_t AFilter,
                                      TFolderWatch& AWatch) override;
  [[nodiscard]] TWinError RearmWatch(const TFolderWatch& AWatch) override;
  void CloseValue(TFindTag, std::uintptr_t AHandle) noexcept override;
  void CloseValue(TFolderWatchTag, std::uintptr_t AWatch) noexcept override;
  [[nodiscard]] TWinError WriteWhole(std::u16string_view APath, std::span<const std::byte> AData) override;
  [[nodiscard]] TWinError AppendBytes(std::u16string_view APath, std::span<const std::byte> AData) override;
  [[nodiscard]] TWinError RemoveFile(std::u16string_view APath) override;
  [[nodiscard]] TWinError MakeFolder(std::u16string_view APath) override;
  [[nodiscard]] TWinError RemoveFolder(std::u16string_view APath) override;
  [[nodiscard]] TWinError SetAttributes(std::u16string_view APath, std::uint32_t AAttributes) override;

  /// The content of a file for the facilities that look into it; the same errors as ReadWhole.
  [[nodiscard]] TWinError LoadBytes(std::u16string_view APath, TFileBytes& ABytes);

  /// The path on the drive itself of what this process sees at APath: redirection and links are followed.
  [[nodiscard]] TWinError FindRealPath(std::u16string_view APath, std::u16string& ARealPath);

  // What prepares a machine, and what its other processes do. These paths are the drive's own: no redirection applies,
  // drives and missing folders are made, an existing file is replaced, nothing is logged; watches are told of what is
  // added and removed. std::invalid_argument for what cannot be a path.

  void AddFolder(std::u16string_view APath);
  void AddFile(std::u16string_view APath, std::vector<std::byte> AData);
  void AddFile(std::u16string_view APath, std::string_view AText);
  /// Removes a file, or a folder with everything below it; what is not there is passed over.
  void DropTree(std::u16string_view APath);
  /// Content from the computer's disk, read when it is asked for. ASize: its size in bytes.
  void AddHostFile(std::u16string_view APath, std::filesystem::path AHostPath, std::uint64_t ASize);
  /// Content that lives as long as the program.
  void AddStaticFile(std::u16string_view APath, std::span<const std::byte> AData);
  /// A folder that is a link to another folder, which need not exist.
  void AddLink(std::u16string_view APath, std::u16string_view ATarget);
  /// Removes a file, or a folder with all that it holds, whoever uses it.
  void RemoveAt(std::u16string_view APath);
  void SetTimes(std::u16string_view APath, TFileTime ACreation, TFileTime ALastAccess, TFileTime ALastWrite);
  /// Whether somebody holds the file open without sharing it.
  void MarkInUse(std::u16string_view APath, bool AInUse = true);
  /// Whether the file's content or the folder's entries are denied to the process.
  void MarkDenied(std::u16string_view APath, bool ADenied = true);
  /// Where relative paths start; the system folder at first.
  void SetCurrentFolder(std::u16string_view APath);

  /// Whether there is a file or folder at a path of the drive's own.
  [[nodiscard]] bool Contains(std::u16string_view APath);
  /// What the library has changed so far, in order; writes of one file in a row count once.
  [[nodiscard]] std::vector<TFileChange> Changes();
  /// Open walks and watches, and threads that have redirection switched off.
  [[nodiscard]] std::size_t OpenHandleCount();

 private:
  struct TNode;
  struct TFound;
  struct TWalk {
    std::vector<TFoundFile> Files;
    std::size_t Next = 0;
  };

  /// ReadWhole, with ATooLarge for a file of more than ALimit bytes.
  TWinError ReadWithin(std::u16string_view APath, std::size_t ALimit, TWinError ATooLarge,
                       std::vector<std::byte>& AData);

  // all of these need the lock
  TWinError Resolve(std::u16string_view APath, bool AWildcards, TResolvedPath& AResult);
  TWinError Find(const TResolvedPath& APath, bool AFollowLast, TFound& AFound);
  TWinError Locate(std::u16string_view APath, bool AFollowLast, TFound& AFound);
  TWinError FindContent(std::u16string_view APath, TNode*& ANode);
  TWinError FindOrAddFile(std::u16string_view APath, TFound& AFound);
  TNode& Obtain(std::u16string_view APath, std::uint32_t AAttributes);
  [[nodiscard]] bool TryFindDirect(std::u16string_view APath, TFound& AFound);
  [[nodiscard]] TFound FindDirect(std::u16string_view APath);
  TNode& Existing(std::u16string_view APath);
  TNode& AddNode(TNode& AParent, std::u16string_view AName, std::uint32_t AAttributes);
  void AddContent(std::u16string_view APath, TFileBytes ABytes);
  void Log(EFileChange AKind, const TFound& AFound);
  static void Destroy(std::vector<std::unique_ptr<TNode>> ANodes);

  TSimulatedClock& FClock;
  const bool FIsRedirected;
  TRedirector FRedirector;
  std::u16string FCurrentFolder;
  std::mutex FMutex;
  std::map<char16_t, std::unique_ptr<TNode>> FDrives;
  THandleTable<TWalk> FWalks;
  TFolderWatches FWatches;
  std::unordered_map<std::thread::id, std::uintptr_t> FUnredirected;
  std::vector<TFileChange> FChanges;
};

}  // namespace varcolin
