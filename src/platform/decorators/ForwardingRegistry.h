// A registry that forwards to another one.
#pragma once

#include "platform/Registry.h"
#include "platform/decorators/CallGate.h"

namespace varcolin {

/// Forwards each call to another facility when the gate admits it.
class TForwardingRegistry : public TForwarding<IWritableRegistry> {
 public:
  explicit TForwardingRegistry(IWritableRegistry& AInner, ICallGate& AGate = OpenGate)
      : TForwarding(AInner, AGate, "Registry") {}

  [[nodiscard]] TWinError OpenKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                  TRegistryKey& AKey) override {
    return Look("OpenKey", APath, [&] { return Inner().OpenKey(ABase, APath, AAccess, AKey); });
  }
  [[nodiscard]] TWinError QueryKeyInfo(const TRegistryKey& AKey, TRegistryKeyInfo& AInfo) override {
    return Look("QueryKeyInfo", {}, [&] { return Inner().QueryKeyInfo(AKey, AInfo); });
  }
  [[nodiscard]] TWinError EnumKey(const TRegistryKey& AKey, std::uint32_t AIndex, std::u16string& AName) override {
    return Look("EnumKey", {}, [&] { return Inner().EnumKey(AKey, AIndex, AName); });
  }
  [[nodiscard]] TWinError EnumValue(const TRegistryKey& AKey, std::uint32_t AIndex, TRegistryValue& AValue) override {
    return Look("EnumValue", {}, [&] { return Inner().EnumValue(AKey, AIndex, AValue); });
  }
  [[nodiscard]] TWinError QueryValue(const TRegistryKey& AKey, std::u16string_view AName,
                                     TRegistryValue& AValue) override {
    return Look("QueryValue", AName, [&] { return Inner().QueryValue(AKey, AName, AValue); });
  }
  [[nodiscard]] TWinError NotifyChange(const TRegistryKey& AKey, bool ASubtree, std::uint32_t AFilter,
                                       const TEvent& AEvent) override {
    return Look("NotifyChange", {}, [&] { return Inner().NotifyChange(AKey, ASubtree, AFilter, AEvent); });
  }
  [[nodiscard]] TWinError CreateKeyPath(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                        TRegistryKey& AKey, bool& ACreated) override {
    return Change("CreateKeyPath", APath, [&] { return Inner().CreateKeyPath(ABase, APath, AAccess, AKey, ACreated); });
  }
  [[nodiscard]] TWinError SetValue(const TRegistryKey& AKey, std::u16string_view AName, std::uint32_t AType,
                                   const void* AData, std::size_t ASize) override {
    return Change("SetValue", AName, [&] { return Inner().SetValue(AKey, AName, AType, AData, ASize); });
  }
  [[nodiscard]] TWinError RemoveValue(const TRegistryKey& AKey, std::u16string_view AName) override {
    return Change("RemoveValue", AName, [&] { return Inner().RemoveValue(AKey, AName); });
  }
  [[nodiscard]] TWinError RemoveKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AView) override {
    return Change("RemoveKey", APath, [&] { return Inner().RemoveKey(ABase, APath, AView); });
  }
  void CloseValue(TRegistryKeyTag ATag, std::uintptr_t AKey) noexcept override { Inner().CloseValue(ATag, AKey); }
};

}  // namespace varcolin
