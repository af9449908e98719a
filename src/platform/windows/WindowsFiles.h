// IWritableFiles over the real Windows calls.
#pragma once

#include "platform/Files.h"
#include "platform/windows/LateBinding.h"

namespace varcolin {

class TWindowsFiles final : public IWritableFiles {
 public:
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
  [[nodiscard]] TWinError WriteWhole(std::u16string_view APath, std::span<const std::byte> AData) override;
  [[nodiscard]] TWinError AppendBytes(std::u16string_view APath, std::span<const std::byte> AData) override;
  [[nodiscard]] TWinError RemoveFile(std::u16string_view APath) override;
  [[nodiscard]] TWinError MakeFolder(std::u16string_view APath) override;
  [[nodiscard]] TWinError RemoveFolder(std::u16string_view APath) override;
  [[nodiscard]] TWinError SetAttributes(std::u16string_view APath, std::uint32_t AAttributes) override;
  [[nodiscard]] TWinError WatchFolder(std::u16string_view APath, bool ASubtree, std::uint32_t AFilter,
                                      TFolderWatch& AWatch) override;
  [[nodiscard]] TWinError RearmWatch(const TFolderWatch& AWatch) override;
  void CloseValue(TFindTag, std::uintptr_t AHandle) noexcept override;
  void CloseValue(TFolderWatchTag, std::uintptr_t AWatch) noexcept override;

 private:
  TLateLibrary FKernel{L"kernel32.dll"};
  TLateFunction<BOOL WINAPI(PVOID*)> FDisableRedirection{FKernel, "Wow64DisableWow64FsRedirection"};
  TLateFunction<BOOL WINAPI(PVOID)> FRevertRedirection{FKernel, "Wow64RevertWow64FsRedirection"};
};

}  // namespace varcolin
