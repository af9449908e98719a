#include "platform/windows/WindowsFiles.h"

#include <algorithm>
#include <cstring>

#include "platform/windows/OwnedHandle.h"

namespace varcolin {

namespace {

constexpr std::size_t TransferSize = 1 << 20;

[[nodiscard]] std::uint64_t SizeOf(DWORD AAttributes, DWORD AHigh, DWORD ALow) noexcept {
  return (AAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? 0 : std::uint64_t{AHigh} << 32 | ALow;
}

/// WIN32_FILE_ATTRIBUTE_DATA and WIN32_FIND_DATAW name these members alike.
template <class TData>
[[nodiscard]] TFileFacts FactsOf(const TData& AData) noexcept {
  return {AData.dwFileAttributes, FromFileTime(AData.ftCreationTime), FromFileTime(AData.ftLastAccessTime),
          FromFileTime(AData.ftLastWriteTime), SizeOf(AData.dwFileAttributes, AData.nFileSizeHigh, AData.nFileSizeLow)};
}

/// Makes a call that takes a path and answers with a BOOL.
template <class TCall>
[[nodiscard]] TWinError CallWithPath(std::u16string_view APath, TCall ACall) {
  const TApiText path(APath);
  if (!path.IsWhole()) return WinError::InvalidName;
  return ACall(path.Get()) ? WinError::Success : LastFailure();
}

/// Opens a file and writes to it, from its start or, with the right to append alone, always at its end.
[[nodiscard]] TWinError WriteThrough(std::u16string_view APath, DWORD AAccess, DWORD AShare, DWORD ADisposition,
                                     std::span<const std::byte> AData) {
  const TApiText path(APath);
  if (!path.IsWhole()) return WinError::InvalidName;
  const TOwnedHandle file(
      CreateFileW(path.Get(), AAccess, AShare, nullptr, ADisposition, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (file.get() == INVALID_HANDLE_VALUE) return LastFailure();
  while (!AData.empty()) {
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min(AData.size(), TransferSize));
    SetLastError(ERROR_SUCCESS);
    if (!WriteFile(file.get(), AData.data(), wanted, &count, nullptr) || count == 0) return LastFailure();
    AData = AData.subspan(count);
  }
  return WinError::Success;
}

/// Reads a whole file; ATooLarge is the code for one of more than ALimit bytes.
[[nodiscard]] TWinError ReadThrough(std::u16string_view APath, DWORD AShare, std::size_t ALimit, TWinError ATooLarge,
                                    std::vector<std::byte>& AData) {
  const TApiText path(APath);
  if (!path.IsWhole()) return WinError::InvalidName;
  const TOwnedHandle file(
      CreateFileW(path.Get(), GENERIC_READ, AShare, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (file.get() == INVALID_HANDLE_VALUE) return LastFailure();
  // A name such as COM1 opens a device, whose reading might never end.
  if (GetFileType(file.get()) != FILE_TYPE_DISK) return WinError::InvalidName;
  LARGE_INTEGER size;
  if (!GetFileSizeEx(file.get(), &size)) return LastFailure();
  if (size.QuadPart < 0 || static_cast<std::uint64_t>(size.QuadPart) > ALimit) return ATooLarge;

  std::vector<std::byte> data;
  if (!TryResize(data, static_cast<std::size_t>(size.QuadPart))) return WinError::NotEnoughMemory;
  std::size_t done = 0;
  while (done < data.size()) {
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min(data.size() - done, TransferSize));
    if (!ReadFile(file.get(), data.data() + done, wanted, &count, nullptr)) return LastFailure();
    if (count == 0) break;  // the file has become shorter meanwhile
    done += count;
  }
  data.resize(done);
  AData = std::move(data);
  return WinError::Success;
}

}  // namespace

TWinError TWindowsFiles::GetFacts(std::u16string_view APath, TFileFacts& AFacts) {
  return CallWithPath(APath, [&](const wchar_t* AName) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(AName, GetFileExInfoStandard, &data)) return false;
    AFacts = FactsOf(data);
    return true;
  });
}

TWinError TWindowsFiles::FindFirst(std::u16string_view APattern, TFindHandle& AHandle, TFoundFile& AFile) {
  return CallWithPath(APattern, [&](const wchar_t* AName) {
    WIN32_FIND_DATAW data;
    const HANDLE handle = FindFirstFileW(AName, &data);
    if (handle == INVALID_HANDLE_VALUE) return false;
    AHandle = TFindHandle(*this, reinterpret_cast<std::uintptr_t>(handle));
    AFile.Name = FromWide(data.cFileName);
    AFile.Facts = FactsOf(data);
    return true;
  });
}

TWinError TWindowsFiles::FindNext(const TFindHandle& AHandle, TFoundFile& AFile) {
  WIN32_FIND_DATAW data;
  if (!FindNextFileW(reinterpret_cast<HANDLE>(AHandle.Value()), &data)) return LastFailure(WinError::NoMoreFiles);
  AFile.Name = FromWide(data.cFileName);
  AFile.Facts = FactsOf(data);
  return WinError::Success;
}

TWinError TWindowsFiles::ReadWhole(std::u16string_view APath, std::size_t ALimit, std::vector<std::byte>& AData) {
  return ReadThrough(APath, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, ALimit, WinError::NotEnoughMemory,
                     AData);
}

TWinError TWindowsFiles::ReadWholeDenyWrite(std::u16string_view APath, std::size_t ALimit,
                                            std::vector<std::byte>& AData) {
  return ReadThrough(APath, FILE_SHARE_READ, ALimit, WinError::FileTooLarge, AData);
}

TWinError TWindowsFiles::ReadVersionResource(std::u16string_view APath, std::vector<std::byte>& AData) {
  const TApiText path(APath);
  if (!path.IsWhole()) return WinError::InvalidName;
  DWORD ignored = 0;
  SetLastError(ERROR_SUCCESS);
  const DWORD size = GetFileVersionInfoSizeW(path.Get(), &ignored);
  if (size == 0) return LastFailure(WinError::ResourceTypeNotFound);
  std::vector<std::byte> data;
  if (!TryResize(data, size)) return WinError::NotEnoughMemory;
  SetLastError(ERROR_SUCCESS);
  if (!GetFileVersionInfoW(path.Get(), 0, size, data.data())) return LastFailure(WinError::ResourceTypeNotFound);

  // Behind the resource the system leaves room for its own conversions; the resource's first word is its length.
  std::uint16_t length = 0;
  if (data.size() >= sizeof(length)) std::memcpy(&length, data.data(), sizeof(length));
  if (length != 0 && length < data.size()) data.resize(length);
  AData = std::move(data);
  return WinError::Success;
}

TWinError TWindowsFiles::DisableRedirection(std::uintptr_t& AOldValue) {
  auto* const disable = FDisableRedirection.Get();
  if (disable == nullptr) return WinError::InvalidFunction;
  void* old = nullptr;
  if (!disable(&old)) return LastFailure(WinError::InvalidFunction);
  AOldValue = reinterpret_cast<std::uintptr_t>(old);
  return WinError::Success;
}

TWinError TWindowsFiles::RevertRedirection(std::uintptr_t AOldValue) {
  auto* const revert = FRevertRedirection.Get();
  if (revert == nullptr) return WinError::InvalidFunction;
  return revert(reinterpret_cast<void*>(AOldValue)) ? WinError::Success : LastFailure(WinError::InvalidFunction);
}

TWinError TWindowsFiles::WriteWhole(std::u16string_view APath, std::span<const std::byte> AData) {
  return WriteThrough(APath, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS, AData);
}

TWinError TWindowsFiles::AppendBytes(std::u16string_view APath, std::span<const std::byte> AData) {
  return WriteThrough(APath, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_ALWAYS, AData);
}

TWinError TWindowsFiles::RemoveFile(std::u16string_view APath) { return CallWithPath(APath, DeleteFileW); }

TWinError TWindowsFiles::MakeFolder(std::u16string_view APath) {
  return CallWithPath(APath, [](const wchar_t* AName) { return CreateDirectoryW(AName, nullptr); });
}

TWinError TWindowsFiles::RemoveFolder(std::u16string_view APath) { return CallWithPath(APath, RemoveDirectoryW); }

TWinError TWindowsFiles::SetAttributes(std::u16string_view APath, std::uint32_t AAttributes) {
  return CallWithPath(APath, [&](const wchar_t* AName) { return SetFileAttributesW(AName, AAttributes); });
}

TWinError TWindowsFiles::WatchFolder(std::u16string_view APath, bool ASubtree, std::uint32_t AFilter,
                                     TFolderWatch& AWatch) {
  return CallWithPath(APath, [&](const wchar_t* AName) {
    const HANDLE handle = FindFirstChangeNotificationW(AName, ASubtree ? TRUE : FALSE, AFilter);
    if (handle == INVALID_HANDLE_VALUE) return false;
    AWatch = TFolderWatch(*this, reinterpret_cast<std::uintptr_t>(handle));
    return true;
  });
}

TWinError TWindowsFiles::RearmWatch(const TFolderWatch& AWatch) {
  return FindNextChangeNotification(reinterpret_cast<HANDLE>(AWatch.Value())) ? WinError::Success : LastFailure();
}

void TWindowsFiles::CloseValue(TFindTag, std::uintptr_t AHandle) noexcept {
  FindClose(reinterpret_cast<HANDLE>(AHandle));
}

void TWindowsFiles::CloseValue(TFolderWatchTag, std::uintptr_t AWatch) noexcept {
  FindCloseChangeNotification(reinterpret_cast<HANDLE>(AWatch));
}

}  // namespace varcolin
