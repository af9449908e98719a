// Files and folders, and the file-system redirection of a 32-bit process on 64-bit Windows.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Types.h"

namespace varcolin {

/// File attribute bits.
namespace FileAttribute {
inline constexpr std::uint32_t ReadOnly = 0x1;
inline constexpr std::uint32_t Hidden = 0x2;
inline constexpr std::uint32_t System = 0x4;
inline constexpr std::uint32_t Folder = 0x10;
inline constexpr std::uint32_t Archive = 0x20;
inline constexpr std::uint32_t Normal = 0x80;
inline constexpr std::uint32_t ReparsePoint = 0x400;
}  // namespace FileAttribute

/// Facts about a file or folder (Windows: WIN32_FILE_ATTRIBUTE_DATA).
struct TFileFacts {
  std::uint32_t Attributes = 0;
  TFileTime CreationTime;
  TFileTime LastAccessTime;
  TFileTime LastWriteTime;
  std::uint64_t Size = 0;  ///< bytes; 0 for folders

  [[nodiscard]] bool IsFolder() const noexcept { return (Attributes & FileAttribute::Folder) != 0; }
};

/// One entry of a folder. "." and ".." are entries too.
struct TFoundFile {
  std::u16string Name;
  TFileFacts Facts;
};

/// What a folder watch listens to.
namespace FileNotify {
inline constexpr std::uint32_t FileName = 0x01;    ///< files appear, vanish and are renamed
inline constexpr std::uint32_t FolderName = 0x02;  ///< folders do
inline constexpr std::uint32_t Attributes = 0x04;
inline constexpr std::uint32_t Size = 0x08;
inline constexpr std::uint32_t LastWrite = 0x10;
}  // namespace FileNotify

struct TFindTag {};
struct TFolderWatchTag {
  static constexpr bool IsWaitable = true;
};
class IFiles;

/// A walk over a folder's entries.
using TFindHandle = THandle<IFiles, TFindTag>;
/// A watch on a folder. It is waited for through ISync, and stays signalled from the first change on until it is armed
/// anew.
using TFolderWatch = THandle<IFiles, TFolderWatchTag>;

/// Reading of files and folders: code that only looks gets this.
class IFiles {
 public:
  virtual ~IFiles() = default;

  /// Attributes, times and size of the file or folder at APath, as this process sees it (redirection applies).
  /// FileNotFound or PathNotFound when there is none, InvalidName for text that is no path, AccessDenied.
  /// Windows: GetFileAttributesExW.
  [[nodiscard]] virtual TWinError GetFacts(std::u16string_view APath, TFileFacts& AFacts) = 0;

  /// Starts a walk over the entries that match APattern, a path whose last component may have wildcards (* and ?), and
  /// gives the first. FileNotFound when none matches. Windows: FindFirstFileW.
  [[nodiscard]] virtual TWinError FindFirst(std::u16string_view APattern, TFindHandle& AHandle, TFoundFile& AFile) = 0;
  /// The next entry; NoMoreFiles behind the last. Windows: FindNextFileW.
  [[nodiscard]] virtual TWinError FindNext(const TFindHandle& AHandle, TFoundFile& AFile) = 0;

  /// Reads a whole file, sharing it with readers, writers and removers. NotEnoughMemory when it is larger than
  /// ALimit bytes. Windows: CreateFileW, GetFileSizeEx, ReadFile, CloseHandle.
  [[nodiscard]] virtual TWinError ReadWhole(std::u16string_view APath, std::size_t ALimit,
                                            std::vector<std::byte>& AData) = 0;

  /// The same, while nobody may write to the file or remove it. SharingViolation when somebody has it open for that;
  /// FileTooLarge when it is larger than ALimit bytes. Windows: as ReadWhole, with FILE_SHARE_READ alone.
  [[nodiscard]] virtual TWinError ReadWholeDenyWrite(std::u16string_view APath, std::size_t ALimit,
                                                     std::vector<std::byte>& AData) = 0;

  /// The version resource of a file, as its bytes lie there. ResourceTypeNotFound and others when it has none.
  /// Windows: GetFileVersionInfoSizeW, GetFileVersionInfoW.
  [[nodiscard]] virtual TWinError ReadVersionResource(std::u16string_view APath, std::vector<std::byte>& AData) = 0;

  /// Switches redirection off for the calling thread; AOldValue is for the revert. InvalidFunction where the system
  /// has no redirection. Windows: Wow64DisableWow64FsRedirection.
  [[nodiscard]] virtual TWinError DisableRedirection(std::uintptr_t& AOldValue) = 0;
  /// Windows: Wow64RevertWow64FsRedirection.
  [[nodiscard]] virtual TWinError RevertRedirection(std::uintptr_t AOldValue) = 0;

  /// Starts a watch on the folder at APath, and on what lies below it when ASubtree. AFilter: FileNotify bits. Changes
  /// of the folder's entries count, not those of the folder itself. Fails when there is no such folder. Windows:
  /// FindFirstChangeNotificationW.
  [[nodiscard]] virtual TWinError WatchFolder(std::u16string_view APath, bool ASubtree, std::uint32_t AFilter,
                                              TFolderWatch& AWatch) = 0;
  /// Waits for the next change; one that came since the watch was signalled counts as one. Fails when the folder is
  /// gone. Windows: FindNextChangeNotification.
  [[nodiscard]] virtual TWinError RearmWatch(const TFolderWatch& AWatch) = 0;

  /// Ends a walk; called by TFindHandle. Windows: FindClose.
  virtual void CloseValue(TFindTag, std::uintptr_t AHandle) noexcept = 0;
  /// Ends a watch; called by TFolderWatch. Windows: FindCloseChangeNotification.
  virtual void CloseValue(TFolderWatchTag, std::uintptr_t AWatch) noexcept = 0;
};

/// Reading and writing of files and folders.
class IWritableFiles : public IFiles {
 public:
  /// Writes a whole file, replacing one that exists. PathNotFound when its folder is missing, AccessDenied over a
  /// read-only file or a folder. Windows: CreateFileW (CREATE_ALWAYS), WriteFile, CloseHandle.
  [[nodiscard]] virtual TWinError WriteWhole(std::u16string_view APath, std::span<const std::byte> AData) = 0;
  /// Adds bytes at the end of a file, creating it when missing; processes that append at the same time do not overwrite
  /// each other's bytes. PathNotFound when its folder is missing, AccessDenied over a read-only file or a folder.
  /// Windows: CreateFileW (FILE_APPEND_DATA, OPEN_ALWAYS, shared for reading and writing), WriteFile, CloseHandle.
  [[nodiscard]] virtual TWinError AppendBytes(std::u16string_view APath, std::span<const std::byte> AData) = 0;
  /// Removes a file. AccessDenied when it is read-only or a folder, SharingViolation when it is in use.
  /// Windows: DeleteFileW.
  [[nodiscard]] virtual TWinError RemoveFile(std::u16string_view APath) = 0;
  /// Makes one folder; AlreadyExists, or PathNotFound when its parent is missing. Windows: CreateDirectoryW.
  [[nodiscard]] virtual TWinError MakeFolder(std::u16string_view APath) = 0;
  /// Removes an empty folder; FolderNotEmpty otherwise. Windows: RemoveDirectoryW.
  [[nodiscard]] virtual TWinError RemoveFolder(std::u16string_view APath) = 0;
  /// Sets the attribute bits. Windows: SetFileAttributesW.
  [[nodiscard]] virtual TWinError SetAttributes(std::u16string_view APath, std::uint32_t AAttributes) = 0;
};

}  // namespace varcolin
