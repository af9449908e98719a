// The options store: the text values of one registry key of the current user.
#include <map>

#include "platform/Registry.h"
#include "siblings/HelperParts.h"
#include "siblings/SiblingLibrary.h"
#include "support/uInterfacedObject.h"
#include "support/uText.h"

namespace varcolin {
namespace {

class TOptions final : public TInterfacedObject<IOptions> {
 public:
  explicit TOptions(const TMachine& AMachine) : FRegistry(AMachine.Registry) {}

  /// A key that does not exist yet is an empty store: Save creates it.
  bool VARCOLIN_CALL OpenStore(const char16_t* AKeyPath) override {
    return Guarded(false, [&] {
      FDefaults.clear();
      FStored.clear();
      FChanged.clear();
      FKeyPath = TextOf(AKeyPath);
      return ReadAll();
    });
  }

  void VARCOLIN_CALL SetDefault(const char16_t* AName, const char16_t* AText) override {
    GuardedCall([&] { FDefaults.insert_or_assign(std::u16string(TextOf(AName)), std::u16string(TextOf(AText))); });
  }

  void VARCOLIN_CALL ReadText(const char16_t* AName, TOleString* AResult) override {
    ReturnText(AResult, [&] {
      for (const TTexts* texts : {&FChanged, &FStored, &FDefaults}) {
        if (const auto found = texts->find(TextOf(AName)); found != texts->end())
          return std::u16string_view(found->second);
      }
      return std::u16string_view();
    });
  }

  void VARCOLIN_CALL WriteText(const char16_t* AName, const char16_t* AText) override {
    GuardedCall([&] { FChanged.insert_or_assign(std::u16string(TextOf(AName)), std::u16string(TextOf(AText))); });
  }

  bool VARCOLIN_CALL Save() override {
    return Guarded(false, [&] {
      if (FKeyPath.empty()) return false;
      TRegistryKey key;
      bool isNew = false;
      if (FRegistry.CreateKeyPath(ERegistryRoot::CurrentUser, FKeyPath, KeyAccess::Write, key, isNew) !=
          WinError::Success) {
        return false;
      }
      bool isSaved = true;
      for (auto text = FChanged.begin(); text != FChanged.end();) {
        if (Write(key, text->first, text->second)) {
          FStored.insert_or_assign(text->first, text->second);
          text = FChanged.erase(text);
        } else {
          isSaved = false;
          ++text;
        }
      }
      return isSaved;
    });
  }

 private:
  using TTexts = std::map<std::u16string, std::u16string, TTextLess>;

  bool ReadAll() {
    if (FKeyPath.empty()) return false;
    TRegistryKey key;
    const TWinError opened = FRegistry.OpenKey(ERegistryRoot::CurrentUser, FKeyPath, KeyAccess::Read, key);
    if (opened == WinError::FileNotFound || opened == WinError::PathNotFound) return true;
    if (opened != WinError::Success) return false;
    TRegistryValue value;
    for (std::uint32_t index = 0;; ++index) {
      const TWinError read = FRegistry.EnumValue(key, index, value);
      if (read == WinError::NoMoreItems) return true;
      if (read != WinError::Success) break;
      if (value.Type == RegType::String) FStored.insert_or_assign(value.Name, TextFromBytes(value.Data));
    }
    FStored.clear();
    return false;
  }

  /// Stores a text with its terminator, as little-endian units.
  bool Write(const TRegistryKey& AKey, std::u16string_view AName, std::u16string_view AText) {
    std::vector<std::byte> data;
    data.reserve((AText.size() + 1) * 2);
    const auto append = [&](char16_t AUnit) {
      data.push_back(static_cast<std::byte>(AUnit & 0xFF));
      data.push_back(static_cast<std::byte>(AUnit >> 8));
    };
    for (const char16_t unit : AText) append(unit);
    append(u'\0');
    return FRegistry.SetValue(AKey, AName, RegType::String, data.data(), data.size()) == WinError::Success;
  }

  IWritableRegistry& FRegistry;
  std::u16string FKeyPath;
  TTexts FDefaults;
  TTexts FStored;
  TTexts FChanged;
};

}  // namespace

TInterfaceRef<IOptions> MakeOptions(const TMachine& AMachine) { return MakeObject<TOptions, IOptions>(AMachine); }

}  // namespace varcolin
