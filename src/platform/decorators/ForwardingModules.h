// Modules, icons and a shell that forward to others.
#pragma once

#include "platform/Icons.h"
#include "platform/Modules.h"
#include "platform/Shell.h"
#include "platform/decorators/CallGate.h"

namespace varcolin {

/// Forwards each call to another facility when the gate admits it.
class TForwardingModules : public TForwarding<IModules> {
 public:
  explicit TForwardingModules(IModules& AInner, ICallGate& AGate = OpenGate) : TForwarding(AInner, AGate, "Modules") {}

  [[nodiscard]] TWinError LoadModule(std::u16string_view AName, TModule& AModule) override {
    return Look("LoadModule", AName, [&] { return Inner().LoadModule(AName, AModule); });
  }
  [[nodiscard]] TWinError FindExport(const TModule& AModule, std::string_view AName, TProcedure& AProcedure) override {
    return Look("FindExport", {}, [&] { return Inner().FindExport(AModule, AName, AProcedure); });
  }
  [[nodiscard]] TWinError LoadAsResource(std::u16string_view APath, TModule& AModule) override {
    return Look("LoadAsResource", APath, [&] { return Inner().LoadAsResource(APath, AModule); });
  }
  [[nodiscard]] TWinError LoadStringResource(const TModule& AModule, std::uint32_t AId, std::uint32_t ALimit,
                                             std::u16string& AText) override {
    return Look("LoadStringResource", {}, [&] { return Inner().LoadStringResource(AModule, AId, ALimit, AText); });
  }
  [[nodiscard]] TWinError QueryDllVersion(std::u16string_view AName, TDllVersion& AVersion) override {
    return Look("QueryDllVersion", AName, [&] { return Inner().QueryDllVersion(AName, AVersion); });
  }
  [[nodiscard]] TWinError GetHostPath(std::u16string& APath) override {
    return Look("GetHostPath", {}, [&] { return Inner().GetHostPath(APath); });
  }
  [[nodiscard]] TWinError GetOwnPath(std::u16string& APath) override {
    return Look("GetOwnPath", {}, [&] { return Inner().GetOwnPath(APath); });
  }
  void CloseValue(TModuleTag ATag, std::uintptr_t AModule) noexcept override { Inner().CloseValue(ATag, AModule); }
};

/// Forwards each call to another facility when the gate admits it.
class TForwardingIcons : public TForwarding<IIcons> {
 public:
  explicit TForwardingIcons(IIcons& AInner, ICallGate& AGate = OpenGate) : TForwarding(AInner, AGate, "Icons") {}

  [[nodiscard]] TWinError MakeImageList(std::int32_t AWidth, std::int32_t AHeight, std::int32_t AInitial,
                                        std::int32_t AGrow, TImageList& AList) override {
    return Look("MakeImageList", {}, [&] { return Inner().MakeImageList(AWidth, AHeight, AInitial, AGrow, AList); });
  }
  [[nodiscard]] TWinError AppendIcon(const TImageList& AList, const TIcon& AIcon, std::int32_t& AIndex) override {
    return Look("AppendIcon", {}, [&] { return Inner().AppendIcon(AList, AIcon, AIndex); });
  }
  [[nodiscard]] std::int32_t ImageCount(const TImageList& AList) override {
    Show("ImageCount");
    return Inner().ImageCount(AList);
  }
  [[nodiscard]] TWinError CopyImage(const TImageList& AList, std::int32_t AIndex, TIcon& AIcon) override {
    return Look("CopyImage", {}, [&] { return Inner().CopyImage(AList, AIndex, AIcon); });
  }
  [[nodiscard]] TWinError LoadOwnIcon(std::u16string_view AName, TIcon& AIcon) override {
    return Look("LoadOwnIcon", AName, [&] { return Inner().LoadOwnIcon(AName, AIcon); });
  }
  [[nodiscard]] TWinError ExtractIcons(std::u16string_view APath, std::int32_t AIndex, TIcon& ALarge,
                                       TIcon& ASmall) override {
    return Look("ExtractIcons", APath, [&] { return Inner().ExtractIcons(APath, AIndex, ALarge, ASmall); });
  }
  void CloseValue(TImageListTag ATag, std::uintptr_t AList) noexcept override { Inner().CloseValue(ATag, AList); }
  void CloseValue(TIconTag ATag, std::uintptr_t AIcon) noexcept override { Inner().CloseValue(ATag, AIcon); }
};

/// Forwards each call to another facility when the gate admits it.
class TForwardingShell : public TForwarding<IShell> {
 public:
  explicit TForwardingShell(IShell& AInner, ICallGate& AGate = OpenGate) : TForwarding(AInner, AGate, "Shell") {}

  [[nodiscard]] TWinError GetSpecialFolder(std::int32_t ACsidl, std::u16string& APath) override {
    return Look("GetSpecialFolder", {}, [&] { return Inner().GetSpecialFolder(ACsidl, APath); });
  }
  [[nodiscard]] TWinError QueryIsOS(std::uint32_t AKind, bool& AAnswer) override {
    return Look("QueryIsOS", {}, [&] { return Inner().QueryIsOS(AKind, AAnswer); });
  }
  [[nodiscard]] TWinError GetDesktopFolder(TShellFolder& AFolder) override {
    return Look("GetDesktopFolder", {}, [&] { return Inner().GetDesktopFolder(AFolder); });
  }
  [[nodiscard]] TWinError GetDisplayName(const TShellFolder& AFolder, std::span<const std::byte> AIDList,
                                         std::uint32_t AForm, std::u16string& AName) override {
    return Look("GetDisplayName", {}, [&] { return Inner().GetDisplayName(AFolder, AIDList, AForm, AName); });
  }
  void CloseValue(TShellFolderTag ATag, std::uintptr_t AFolder) noexcept override { Inner().CloseValue(ATag, AFolder); }
};

}  // namespace varcolin
