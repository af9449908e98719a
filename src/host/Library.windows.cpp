// "Varcolin.dll" and its siblings, loaded from the folder of the host.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>

#include "host/HostError.h"
#include "host/Library.h"
#include "host/SystemCalls.windows.h"
#include "host/Text.h"

namespace varcolin {

TOleString AllocOleString(std::u16string_view AText) noexcept {
  return host::SysAllocStringLen(AText.data(), static_cast<unsigned>(AText.size()));
}

void FreeOleString(TOleString AText) noexcept { host::SysFreeString(AText); }

std::size_t OleStringLength(const char16_t* AText) noexcept { return host::SysStringLen(const_cast<char16_t*>(AText)); }

}  // namespace varcolin

namespace varcolin::host {

namespace {

/// The folder of the host, with a trailing backslash.
std::wstring HostFolder() {
  std::wstring path(32'768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<std::uint32_t>(path.size())));
  return path.substr(0, path.rfind(L'\\') + 1);
}

/// A loaded library of the suite and its one export.
class TModule {
 public:
  explicit TModule(const std::wstring& APath) : FModule(LoadLibraryW(APath.c_str())) {
    if (FModule == nullptr) FError = GetLastError();
  }
  TModule(const TModule&) = delete;
  TModule& operator=(const TModule&) = delete;
  ~TModule() {
    if (FModule != nullptr) FreeLibrary(FModule);
  }

  [[nodiscard]] bool IsLoaded() const noexcept { return FModule != nullptr; }
  [[nodiscard]] std::uint32_t Error() const noexcept { return FError; }
  [[nodiscard]] void* GetInstance(const char16_t* AGuid) const {
    if (FModule == nullptr) return nullptr;
    const auto getInstance = reinterpret_cast<TGetInstance>(GetProcAddress(FModule, "GetInstance"));
    return getInstance == nullptr ? nullptr : getInstance(AGuid, 0);
  }

 private:
  void* FModule;
  std::uint32_t FError = 0;
};

}  // namespace

struct TLibrary::TModules {
  TModule Varcolin{HostFolder() + L"Varcolin.dll"};
  // kept until the library goes: their interfaces are in use
  std::map<std::u16string_view, std::unique_ptr<TModule>> Siblings;
};

TLibrary::TLibrary(const std::optional<std::string>& AMachine, EMachineUse /*AUse*/)
    : FModules(std::make_unique<TModules>()) {
  if (AMachine) throw EHostError("the Windows host reads the computer that it runs on, no machine image", ExitUsage);
  if (!FModules->Varcolin.IsLoaded()) {
    throw EHostError("Varcolin.dll cannot be loaded: Windows error " + std::to_string(FModules->Varcolin.Error()));
  }
  FManager = TInterfaceRef<IVarcolin>(static_cast<IVarcolin*>(FModules->Varcolin.GetInstance(VarcolinGuidText.data())));
  if (!FManager) throw EHostError("Varcolin.dll does not serve its manager");
}

TLibrary::~TLibrary() {
  if (FManager) FManager->Stop();
  FManager.Reset();
  FModules->Siblings.clear();
}

bool TLibrary::HasMachineImages() noexcept { return false; }

void* TLibrary::Sibling(const char16_t* ALibrary, const char16_t* AGuid) const {
  const std::u16string_view name = ALibrary;
  std::unique_ptr<TModule>& module = FModules->Siblings[name];
  if (module == nullptr) module = std::make_unique<TModule>(HostFolder() + std::wstring(name.begin(), name.end()));
  return module->GetInstance(AGuid);
}

std::u16string TLibrary::WindowTitle(TNativeUInt AWindow) const {
  constexpr int longest = 1024;
  std::u16string title(longest, u'\0');
  const int length = GetWindowTextW(reinterpret_cast<void*>(AWindow), title.data(), longest);
  title.resize(static_cast<std::size_t>(std::max(length, 0)));
  return title;
}

std::vector<std::string> TLibrary::TakeMessages() const { return {}; }  // the user has seen them

std::optional<std::vector<std::byte>> TLibrary::ReadFile(const std::u16string& APath) const {
  std::ifstream file(std::filesystem::path(std::wstring(APath.begin(), APath.end())), std::ios::binary);
  if (!file) return std::nullopt;
  std::vector<std::byte> content;
  std::vector<char> block(65'536);
  while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0) {
    const auto* first = reinterpret_cast<const std::byte*>(block.data());
    content.insert(content.end(), first, first + file.gcount());
  }
  return content;
}

}  // namespace varcolin::host
