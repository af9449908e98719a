#include "platform/windows/LateBinding.h"

namespace varcolin {

TLateLibrary::~TLateLibrary() {
  if (FModule != nullptr) FreeLibrary(FModule);
}

FARPROC TLateLibrary::Find(const char* AName) {
  std::call_once(FOnce, [this] {
    // By full path: a bare name would be searched for beside the host's executable first.
    std::u16string path;
    const auto fill = [](wchar_t* ABuffer, DWORD ASize) { return GetSystemDirectoryW(ABuffer, ASize); };
    if (ReadText(fill, path) != WinError::Success) return;
    path.append(u"\\").append(FromWide(FName));
    FModule = LoadLibraryW(AsWide(path.c_str()));
  });
  return FModule != nullptr ? GetProcAddress(FModule, AName) : nullptr;
}

}  // namespace varcolin
