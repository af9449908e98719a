#include "platform/windows/WindowsRegistry.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace varcolin {

namespace {

constexpr std::size_t MaxKeyNameSize = 512;      // documented limit: 255 units
constexpr std::size_t MaxValueNameSize = 16384;  // documented limit: 16383 units
constexpr std::size_t UsualDataSize = 4096;
constexpr int DataAttempts = 8;

[[nodiscard]] HKEY ToKey(std::uintptr_t AValue) noexcept { return reinterpret_cast<HKEY>(AValue); }

[[nodiscard]] HKEY ToKey(TRegistryBase ABase) noexcept {
  // The predefined handles are sign-extended 32-bit numbers.
  if (ABase.IsRoot())
    return ToKey(static_cast<std::uintptr_t>(static_cast<std::intptr_t>(static_cast<LONG>(ABase.Root()))));
  return ToKey(ABase.Key());
}

/// Reads the data of one value. ARead(buffer, size) makes the call: size is the buffer's size before and the data's
/// after it, MoreData tells that the buffer is too small. Nearly every value fits the first buffer.
template <class TRead>
[[nodiscard]] TWinError ReadData(TRead ARead, std::vector<std::byte>& AData) {
  std::array<std::byte, UsualDataSize> usual;
  DWORD size = usual.size();
  TWinError error = ARead(usual.data(), size);
  if (error == WinError::Success) AData.assign(usual.data(), usual.data() + size);
  if (error != WinError::MoreData) return error;

  // The data may grow again between two calls, and performance data never tells its size.
  std::vector<std::byte> large;
  DWORD capacity = usual.size();
  for (int attempt = 0; attempt < DataAttempts && error == WinError::MoreData; ++attempt) {
    if (capacity > std::numeric_limits<LONG>::max() / 2) return WinError::NotEnoughMemory;
    capacity = std::max<DWORD>(capacity * 2, size);
    if (!TryResize(large, capacity)) return WinError::NotEnoughMemory;
    size = capacity;
    error = ARead(large.data(), size);
  }
  if (error != WinError::Success) return error;
  large.resize(size);
  AData = std::move(large);
  return WinError::Success;
}

/// Data of a text value in memory that RegSetValueExW may look around in: it reads the unit in front of and behind the
/// data, and takes a NUL that follows unterminated text for a part of it. What is stored shall be the data, no more.
class TGuardedText {
 public:
  TGuardedText(const void* AData, std::size_t ASize) : FUnits(ASize / sizeof(char16_t) + 3, u'\xFFFF') {
    if (ASize != 0) std::memcpy(&FUnits[1], AData, ASize);
  }
  [[nodiscard]] const BYTE* Get() const noexcept { return reinterpret_cast<const BYTE*>(&FUnits[1]); }

 private:
  std::u16string FUnits;
};

}  // namespace

TWinError TWindowsRegistry::OpenKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                    TRegistryKey& AKey) {
  const TApiText path(APath);
  if (!path.IsWhole()) return WinError::InvalidParameter;
  HKEY key = nullptr;
  const LONG error = RegOpenKeyExW(ToKey(ABase), path.Get(), 0, AAccess, &key);
  if (error != ERROR_SUCCESS) return static_cast<TWinError>(error);
  AKey = TRegistryKey(*this, reinterpret_cast<std::uintptr_t>(key));
  return WinError::Success;
}

TWinError TWindowsRegistry::QueryKeyInfo(const TRegistryKey& AKey, TRegistryKeyInfo& AInfo) {
  DWORD keys = 0, keyLength = 0, values = 0, nameLength = 0, dataSize = 0;
  FILETIME written{};
  const LONG error = RegQueryInfoKeyW(ToKey(AKey.Value()), nullptr, nullptr, nullptr, &keys, &keyLength, nullptr,
                                      &values, &nameLength, &dataSize, nullptr, &written);
  if (error != ERROR_SUCCESS) return static_cast<TWinError>(error);
  AInfo = {keys, keyLength, values, nameLength, dataSize, FromFileTime(written)};
  return WinError::Success;
}

TWinError TWindowsRegistry::EnumKey(const TRegistryKey& AKey, std::uint32_t AIndex, std::u16string& AName) {
  std::array<wchar_t, MaxKeyNameSize> name;
  DWORD length = name.size();
  const LONG error =
      RegEnumKeyExW(ToKey(AKey.Value()), AIndex, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
  if (error != ERROR_SUCCESS) return static_cast<TWinError>(error);
  AName = FromWide(name.data(), length);
  return WinError::Success;
}

TWinError TWindowsRegistry::EnumValue(const TRegistryKey& AKey, std::uint32_t AIndex, TRegistryValue& AValue) {
  std::array<wchar_t, MaxValueNameSize> name;
  DWORD length = 0;
  DWORD type = REG_NONE;
  const auto read = [&](std::byte* ABuffer, DWORD& ASize) {
    length = name.size();
    return static_cast<TWinError>(RegEnumValueW(ToKey(AKey.Value()), AIndex, name.data(), &length, nullptr, &type,
                                                reinterpret_cast<BYTE*>(ABuffer), &ASize));
  };
  if (const TWinError error = ReadData(read, AValue.Data); error != WinError::Success) return error;
  AValue.Name = FromWide(name.data(), length);
  AValue.Type = type;
  return WinError::Success;
}

TWinError TWindowsRegistry::QueryValue(const TRegistryKey& AKey, std::u16string_view AName, TRegistryValue& AValue) {
  const TApiText name(AName);
  if (!name.IsWhole()) return WinError::InvalidParameter;
  DWORD type = REG_NONE;
  const auto read = [&](std::byte* ABuffer, DWORD& ASize) {
    return static_cast<TWinError>(
        RegQueryValueExW(ToKey(AKey.Value()), name.Get(), nullptr, &type, reinterpret_cast<BYTE*>(ABuffer), &ASize));
  };
  if (const TWinError error = ReadData(read, AValue.Data); error != WinError::Success) return error;
  AValue.Name = FromWide(name.Get());  // from the copy: AName may look into AValue
  AValue.Type = type;
  return WinError::Success;
}

TWinError TWindowsRegistry::NotifyChange(const TRegistryKey& AKey, bool ASubtree, std::uint32_t AFilter,
                                         const TEvent& AEvent) {
  return static_cast<TWinError>(RegNotifyChangeKeyValue(ToKey(AKey.Value()), ASubtree ? TRUE : FALSE, AFilter,
                                                        reinterpret_cast<HANDLE>(AEvent.Value()), TRUE));
}

TWinError TWindowsRegistry::CreateKeyPath(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                          TRegistryKey& AKey, bool& ACreated) {
  const TApiText path(APath);
  if (!path.IsWhole()) return WinError::InvalidParameter;
  HKEY key = nullptr;
  DWORD disposition = 0;
  const LONG error = RegCreateKeyExW(ToKey(ABase), path.Get(), 0, nullptr, REG_OPTION_NON_VOLATILE, AAccess, nullptr,
                                     &key, &disposition);
  if (error != ERROR_SUCCESS) return static_cast<TWinError>(error);
  AKey = TRegistryKey(*this, reinterpret_cast<std::uintptr_t>(key));
  ACreated = disposition == REG_CREATED_NEW_KEY;
  return WinError::Success;
}

TWinError TWindowsRegistry::SetValue(const TRegistryKey& AKey, std::u16string_view AName, std::uint32_t AType,
                                     const void* AData, std::size_t ASize) {
  const TApiText name(AName);
  if (!name.IsWhole() || ASize > std::numeric_limits<LONG>::max()) return WinError::InvalidParameter;
  const auto write = [&](const BYTE* ABytes) {
    return static_cast<TWinError>(
        RegSetValueExW(ToKey(AKey.Value()), name.Get(), 0, AType, ABytes, static_cast<DWORD>(ASize)));
  };
  const bool isText = AType == REG_SZ || AType == REG_EXPAND_SZ || AType == REG_MULTI_SZ;
  return isText ? write(TGuardedText(AData, ASize).Get()) : write(static_cast<const BYTE*>(AData));
}

TWinError TWindowsRegistry::RemoveValue(const TRegistryKey& AKey, std::u16string_view AName) {
  const TApiText name(AName);
  if (!name.IsWhole()) return WinError::InvalidParameter;
  return static_cast<TWinError>(RegDeleteValueW(ToKey(AKey.Value()), name.Get()));
}

TWinError TWindowsRegistry::RemoveKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AView) {
  const TApiText path(APath);
  if (!path.IsWhole()) return WinError::InvalidParameter;
  if (auto* const removeView = FRegDeleteKeyEx.Get()) {
    return static_cast<TWinError>(removeView(ToKey(ABase), path.Get(), AView & KeyAccess::ViewMask, 0));
  }
  return static_cast<TWinError>(RegDeleteKeyW(ToKey(ABase), path.Get()));
}

void TWindowsRegistry::CloseValue(TRegistryKeyTag, std::uintptr_t AKey) noexcept { RegCloseKey(ToKey(AKey)); }

}  // namespace varcolin
