// Files and folders that forward to others.
#pragma once

#include "platform/Files.h"
#include "platform/decorators/CallGate.h"

namespace varcolin {

/// Forwards each call to another facility when the gate admits it.
class TForwardingFiles : public TForwarding<IWritableFiles> {
 public:
  explicit TForwardingFiles(IWritableFiles& AInner, ICallGate& AGate = OpenGate)
      : TForwarding(AInner, AGate, "Files") {}

  [[nodiscard]] TWinError GetFacts(std::u16string_view APath, TFileFacts& AFacts) override {
    return Look("GetFacts", APath, [&] { return Inner().GetFacts(APath, AFacts); });
  }
  [[nodiscard]] TWinError FindFirst(std::u16string_view APattern, TFindHandle& AHandle, TFoundFile& AFile) override {
    return Look("FindFirst", APattern, [&] { return Inner().FindFirst(APattern, AHandle, AFile); });
  }
  [[nodiscard]] TWinError FindNext(const TFindHandle& AHandle, TFoundFile& AFile) override {
    return Look("FindNext", {}, [&] { return Inner().FindNext(AHandle, AFile); });
  }
  [[nodiscard]] TWinError ReadWhole(std::u16string_view APath, std::size_t ALimit,
                                    std::vector<std::byte>& AData) override {
    return Look("ReadWhole", APath, [&] { return Inner().ReadWhole(APath, ALimit, AData); });
  }
  [[nodiscard]] TWinError ReadWholeDenyWrite(std::u16string_view APath, std::size_t ALimit,
                                             std::vector<std::byte>& AData) override {
    return Look("ReadWholeDenyWrite", APath, [&] { return Inner().ReadWholeDenyWrite(APath, ALimit, AData); });
  }
  [[nodiscard]] TWinError ReadVersionResource(std::u16string_view APath, std::vector<std::byte>& AData) override {
    return Look("ReadVersionResource", APath, [&] { return Inner().ReadVersionResource(APath, AData); });
  }
  [[nodiscard]] TWinError DisableRedirection(std::uintptr_t& AOldValue) override {
    return Look("DisableRedirection", {}, [&] { return Inner().DisableRedirection(AOldValue); });
  }
  [[nodiscard]] TWinError RevertRedirection(std::uintptr_t AOldValue) override {
    return Look("RevertRedirection", {}, [&] { return Inner().RevertRedirection(AOldValue); });
  }
  [[nodiscard]] TWinError WriteWhole(std::u16string_view APath, std::span<const std::byte> AData) override {
    return Change("WriteWhole", APath, [&] { return Inner().WriteWhole(APath, AData); });
  }
  [[nodiscard]] TWinError AppendBytes(std::u16string_view APath, std::span<const std::byte> AData) override {
    return Change("AppendBytes", APath, [&] { return Inner().AppendBytes(APath, AData); });
  }
  [[nodiscard]] TWinError RemoveFile(std::u16string_view APath) override {
    return Change("RemoveFile", APath, [&] { return Inner().RemoveFile(APath); });
  }
  [[nodiscard]] TWinError MakeFolder(std::u16string_view APath) override {
    return Change("MakeFolder", APath, [&] { return Inner().MakeFolder(APath); });
  }
  [[nodiscard]] TWinError RemoveFolder(std::u16string_view APath) override {
    return Change("RemoveFolder", APath, [&] { return Inner().RemoveFolder(APath); });
  }
  [[nodiscard]] TWinError SetAttributes(std::u16string_view APath, std::uint32_t AAttributes) override {
    return Change("SetAttributes", APath, [&] { return Inner().SetAttributes(APath, AAttributes); });
  }
  [[nodiscard]] TWinError WatchFolder(std::u16string_view APath, bool ASubtree, std::uint32_t AFilter,
                                      TFolderWatch& AWatch) override {
    return Look("WatchFolder", APath, [&] { return Inner().WatchFolder(APath, ASubtree, AFilter, AWatch); });
  }
  [[nodiscard]] TWinError RearmWatch(const TFolderWatch& AWatch) override {
    return Look("RearmWatch", {}, [&] { return Inner().RearmWatch(AWatch); });
  }
  void CloseValue(TFindTag ATag, std::uintptr_t AHandle) noexcept override { Inner().CloseValue(ATag, AHandle); }
  void CloseValue(TFolderWatchTag ATag, std::uintptr_t AWatch) noexcept override { Inner().CloseValue(ATag, AWatch); }
};

}  // namespace varcolin
