// Functions that some supported Windows versions lack, bound by name on first use.
#pragma once

#include <mutex>

#include "platform/windows/WindowsApi.h"

namespace varcolin {

/// A library of the system folder that is loaded with the first search and kept until this object goes. Any thread.
class TLateLibrary {
 public:
  /// AName: file name of the library; the text must outlive this object.
  explicit TLateLibrary(const wchar_t* AName) noexcept : FName(AName) {}
  TLateLibrary(const TLateLibrary&) = delete;
  TLateLibrary& operator=(const TLateLibrary&) = delete;
  ~TLateLibrary();

  /// Address of an export by name, or by ordinal (MAKEINTRESOURCEA); null when the system does not have it.
  [[nodiscard]] FARPROC Find(const char* AName);

 private:
  const wchar_t* FName;
  std::once_flag FOnce;
  HMODULE FModule = nullptr;
};

/// One function of a late library, looked up once. Any thread.
template <class TFunction>
class TLateFunction {
 public:
  TLateFunction(TLateLibrary& ALibrary, const char* AName) noexcept : FLibrary(ALibrary), FName(AName) {}

  /// The function; null when the system does not have it.
  [[nodiscard]] TFunction* Get() {
    std::call_once(FOnce, [this] {
      FFunction = reinterpret_cast<TFunction*>(reinterpret_cast<void (*)()>(FLibrary.Find(FName)));
    });
    return FFunction;
  }

 private:
  TLateLibrary& FLibrary;
  const char* FName;
  std::once_flag FOnce;
  TFunction* FFunction = nullptr;
};

}  // namespace varcolin
