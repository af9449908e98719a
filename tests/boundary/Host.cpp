#include "boundary/Host.h"

#include <process.h>

#include <memory>
#include <stdexcept>

extern "C" {
// kernel32
__declspec(dllimport) void* __stdcall LoadLibraryW(const wchar_t* APath);
__declspec(dllimport) void* __stdcall GetProcAddress(void* AModule, const char* AName);
__declspec(dllimport) int __stdcall FreeLibrary(void* AModule);
__declspec(dllimport) std::uint32_t __stdcall GetModuleFileNameW(void* AModule, wchar_t* APath, std::uint32_t ASize);
__declspec(dllimport) std::uint32_t __stdcall GetTickCount();
__declspec(dllimport) void __stdcall Sleep(std::uint32_t AMilliseconds);
// user32
__declspec(dllimport) void* __stdcall FindWindowExW(void* AParent, void* AAfter, const char16_t* AClass,
                                                    const char16_t* ATitle);
__declspec(dllimport) std::intptr_t
    __stdcall SendMessageW(void* AWindow, std::uint32_t AMessage, std::uintptr_t AFirst, std::intptr_t ASecond);
__declspec(dllimport) int __stdcall PostMessageW(void* AWindow, std::uint32_t AMessage, std::uintptr_t AFirst,
                                                 std::intptr_t ASecond);
__declspec(dllimport) int __stdcall GetWindowTextW(void* AWindow, char16_t* AText, int ASize);
// advapi32
__declspec(dllimport) std::int32_t
    __stdcall RegCreateKeyExW(void* ARoot, const char16_t* APath, std::uint32_t AReserved, char16_t* AClass,
                              std::uint32_t AOptions, std::uint32_t AAccess, void* ASecurity, void** AKey,
                              std::uint32_t* ADisposition);
__declspec(dllimport) std::int32_t __stdcall RegOpenKeyExW(void* ARoot, const char16_t* APath, std::uint32_t AOptions,
                                                           std::uint32_t AAccess, void** AKey);
__declspec(dllimport) std::int32_t
    __stdcall RegSetValueExW(void* AKey, const char16_t* AName, std::uint32_t AReserved, std::uint32_t AType,
                             const void* AData, std::uint32_t ASize);
__declspec(dllimport) std::int32_t __stdcall RegDeleteKeyW(void* ARoot, const char16_t* APath);
__declspec(dllimport) std::int32_t __stdcall RegCloseKey(void* AKey);
// oleaut32
__declspec(dllimport) char16_t* __stdcall SysAllocStringLen(const char16_t* AText, std::uint32_t ALength);
__declspec(dllimport) void __stdcall SysFreeString(char16_t* AText);
__declspec(dllimport) std::uint32_t __stdcall SysStringLen(const char16_t* AText);
}

namespace varcolin {

// The boundary's base types leave the OLE strings to whoever builds a program or library on them.
TOleString AllocOleString(std::u16string_view AText) noexcept {
  return SysAllocStringLen(AText.data(), static_cast<std::uint32_t>(AText.size()));
}
void FreeOleString(TOleString AText) noexcept { SysFreeString(AText); }
std::size_t OleStringLength(const char16_t* AText) noexcept { return SysStringLen(AText); }

namespace boundary {

namespace {

constexpr std::uint32_t MessageGetText = 0x000D;
constexpr std::uint32_t MessageClose = 0x0010;
constexpr std::uint32_t AllAccess = 0xF003F;
void* const CurrentUser = reinterpret_cast<void*>(static_cast<std::uintptr_t>(0x80000001));
constexpr std::uint32_t PatienceMilliseconds = 60'000;

}  // namespace

TLibrary::TLibrary() : FModule(LoadLibraryW(BesideThisProgram(L"Varcolin.dll").c_str())) {
  if (FModule == nullptr) throw std::runtime_error("Varcolin.dll could not be loaded");
  FGetInstance = reinterpret_cast<TGetInstance>(GetProcAddress(FModule, "GetInstance"));
  if (FGetInstance == nullptr) {
    FreeLibrary(FModule);
    throw std::runtime_error("Varcolin.dll has no export GetInstance");
  }
}

TLibrary::~TLibrary() {
  if (auto* const manager = static_cast<IVarcolin*>(GetInstance(VarcolinGuidText.data()))) manager->Stop();
  FreeLibrary(FModule);
}

IVarcolin& TLibrary::Manager() const {
  auto* const manager = static_cast<IVarcolin*>(GetInstance(VarcolinGuidText.data()));
  if (manager == nullptr) throw std::runtime_error("Varcolin.dll does not serve its manager");
  return *manager;
}

std::u16string TListed::Text(TPropertyID AID) const {
  return std::get<std::u16string>(Properties.at(static_cast<std::size_t>(AID)));
}

TProperty ReadProperty(IProduct& AProduct, std::int32_t AID) {
  TVariantValue property;
  AProduct.GetProperty(AID, property.Receive());
  const TOleVariant& value = property.Value();
  switch (value.Type) {
    case EVariantType::Null:
      return {};
    case EVariantType::String:
      return std::u16string(value.String == nullptr ? u"" : value.String, OleStringLength(value.String));
    case EVariantType::Date:
      return value.Date;
    case EVariantType::Int64:
      return value.Int64;
    case EVariantType::Int32:
      return value.Int32;
    default:
      throw std::runtime_error("a property of a kind that no property has");
  }
}

std::vector<TListed> ProgramsNamed(IVarcolin& AManager, std::u16string_view AName) {
  TInterfaceRef<IProductCollection> programs;
  AManager.GetPrograms(programs.Receive());
  programs->Lock();
  const std::unique_ptr<IProductCollection, void (*)(IProductCollection*)> locked(
      programs.Get(), [](IProductCollection* ALocked) { ALocked->Unlock(); });
  std::vector<TListed> found;
  for (std::int32_t i = 0; i < programs->GetCount(); ++i) {
    TInterfaceRef<IProduct> product;
    programs->GetItem(i, product.Receive());
    if (ReadProperty(*product, 0) != TProperty(std::u16string(AName))) continue;
    TListed listed{{}, product->GetPossibleActions(), product->GetIconIndex()};
    for (std::int32_t id = 0; id <= static_cast<std::int32_t>(TPropertyID::Rating); ++id) {
      listed.Properties.push_back(ReadProperty(*product, id));
    }
    found.push_back(std::move(listed));
  }
  return found;
}

TInterfaceRef<IProduct> ProductNamed(IVarcolin& AManager, std::u16string_view AName) {
  TInterfaceRef<IProductCollection> programs;
  AManager.GetPrograms(programs.Receive());
  programs->Lock();
  const std::unique_ptr<IProductCollection, void (*)(IProductCollection*)> locked(
      programs.Get(), [](IProductCollection* ALocked) { ALocked->Unlock(); });
  for (std::int32_t i = 0; i < programs->GetCount(); ++i) {
    TInterfaceRef<IProduct> product;
    programs->GetItem(i, product.Receive());
    if (ReadProperty(*product, 0) == TProperty(std::u16string(AName))) return product;
  }
  return {};
}

bool IsBusy(IProduct& AProduct, TNativeUInt* AWindow) {
  TPossibleActions none = NoAction;
  TNativeUInt window = 0;
  return !AProduct.RunAction(&none, AWindow != nullptr ? AWindow : &window);
}

std::u16string TitleOf(TNativeUInt AWindow) {
  std::u16string title(256, u'\0');
  title.resize(static_cast<std::size_t>(
      GetWindowTextW(reinterpret_cast<void*>(AWindow), title.data(), static_cast<int>(title.size()))));
  return title;
}

bool HasWindow(const char16_t* ATitle) { return FindWindowExW(nullptr, nullptr, nullptr, ATitle) != nullptr; }

TUserEntry::TUserEntry(const std::u16string& AName, const std::u16string& AUninstall)
    : FPath(u"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\" + AName) {
  void* key = nullptr;
  if (RegCreateKeyExW(CurrentUser, FPath.c_str(), 0, nullptr, 0, AllAccess, nullptr, &key, nullptr) != 0) {
    throw std::runtime_error("an uninstall key could not be made");
  }
  for (const auto& [name, text] : {std::pair(u"DisplayName", &AName), std::pair(u"UninstallString", &AUninstall)}) {
    constexpr std::uint32_t isText = 1;
    RegSetValueExW(key, name, 0, isText, text->c_str(), static_cast<std::uint32_t>((text->size() + 1) * 2));
  }
  RegCloseKey(key);
}

TUserEntry::~TUserEntry() { RegDeleteKeyW(CurrentUser, FPath.c_str()); }

bool TUserEntry::Exists() const {
  constexpr std::uint32_t read = 0x20019;
  void* key = nullptr;
  if (RegOpenKeyExW(CurrentUser, FPath.c_str(), 0, read, &key) != 0) return false;
  RegCloseKey(key);
  return true;
}

bool Eventually(const std::function<bool()>& ACondition) {
  const std::uint32_t start = GetTickCount();
  while (!ACondition()) {
    if (GetTickCount() - start > PatienceMilliseconds) return false;
    Sleep(20);
  }
  return true;
}

bool Discover(IVarcolin& AManager) {
  AManager.Refresh();
  return Eventually([&AManager] { return AManager.GetState() == TVRCState::vrcsLoaded; });
}

std::wstring BesideThisProgram(std::wstring_view AName) {
  std::wstring path(1024, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<std::uint32_t>(path.size())));
  path.resize(path.rfind(L'\\') + 1);
  return path.append(AName);
}

int RunProgram(const std::wstring& AProgram, const std::wstring& AArgument) {
  const std::wstring quoted = L'"' + AProgram + L'"';
  return static_cast<int>(_wspawnl(_P_WAIT, AProgram.c_str(), quoted.c_str(), AArgument.c_str(), nullptr));
}

std::u16string DismissMessage(const char16_t* ACaption) {
  void* const message = FindWindowExW(nullptr, nullptr, u"#32770", ACaption);
  if (message == nullptr) return {};
  std::u16string text;
  for (void* label = nullptr; (label = FindWindowExW(message, label, u"Static", nullptr)) != nullptr && text.empty();) {
    text.resize(1024);
    text.resize(static_cast<std::size_t>(
        SendMessageW(label, MessageGetText, text.size(), reinterpret_cast<std::intptr_t>(text.data()))));
  }
  PostMessageW(message, MessageClose, 0, 0);
  return text;
}

}  // namespace boundary

}  // namespace varcolin
