#include "platform/windows/WindowsCom.h"

#include "platform/windows/WindowsApi.h"

namespace varcolin {

bool TWindowsCom::JoinCom(ECom AKind) {
  const DWORD kind = AKind == ECom::Apartment ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED;
  // "Joined already, in the same way" is a success too and needs its own leave.
  return SUCCEEDED(CoInitializeEx(nullptr, kind));
}

void TWindowsCom::LeaveCom() noexcept { CoUninitialize(); }

}  // namespace varcolin
