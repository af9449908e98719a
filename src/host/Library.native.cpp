// The native library over a simulated machine; the host is linked to it.
#include "host/Library.h"
#include "host/Cells.h"
#include "host/HostError.h"
#include "host/Terminal.h"
#include "host/Text.h"
#include "intf/intf_Machine.h"

extern "C" void* GetInstance(const char16_t* AGuid, std::uint32_t AParam);

namespace varcolin::host {

struct TLibrary::TModules {
  TInterfaceRef<IMachine> Machine;
};

TLibrary::TLibrary(const std::optional<std::string>& AMachine, EMachineUse AUse)
    : FModules(std::make_unique<TModules>()) {
  const bool isTold = !AMachine && AUse == EMachineUse::Reads;
  if (isTold) WriteError("varcolin: no --machine given, reading the built-in sample machine\n");
  TOleText error;
  FModules->Machine = TInterfaceRef<IMachine>(SelectMachine(AMachine ? AMachine->c_str() : nullptr, error.Receive()));
  if (!FModules->Machine) throw EHostError(ToUtf8(error.View()), ExitUsage);
  FManager = TInterfaceRef<IVarcolin>(static_cast<IVarcolin*>(GetInstance(VarcolinGuidText.data(), 0)));
  if (!FManager) throw EHostError("the library does not serve its manager");
}

TLibrary::~TLibrary() {
  if (FManager) FManager->Stop();
}

bool TLibrary::HasMachineImages() noexcept { return true; }

void* TLibrary::Sibling(const char16_t* ALibrary, const char16_t* AGuid) const {
  return FModules->Machine->GetSiblingInstance(ALibrary, AGuid);
}

std::u16string TLibrary::WindowTitle(TNativeUInt AWindow) const {
  TOleText title;
  FModules->Machine->GetTitleOfWindow(AWindow, title.Receive());
  return std::u16string(title.View());
}

std::vector<std::string> TLibrary::TakeMessages() const {
  std::vector<std::string> messages;
  TOleText message;
  while (FModules->Machine->TakeMessage(message.Receive())) messages.push_back(ToUtf8(message.View()));
  return messages;
}

std::optional<TPicture> TLibrary::DrawImage(TNativeUInt AImageList, std::int32_t AIndex) const {
  std::int32_t width = 0;
  std::int32_t height = 0;
  if (!FModules->Machine->GetSizeOfImages(AImageList, &width, &height)) return std::nullopt;
  TPicture picture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
  const auto size = static_cast<std::int64_t>(picture.Pixels.size());
  if (!FModules->Machine->DrawImage(AImageList, AIndex, picture.Pixels.data(), size)) return std::nullopt;
  return picture;
}

std::optional<std::vector<std::byte>> TLibrary::ReadFile(const std::u16string& APath) const {
  const std::int64_t size = FModules->Machine->GetSizeOfFile(APath.c_str());
  if (size < 0) return std::nullopt;
  std::vector<std::byte> content(static_cast<std::size_t>(size));
  const std::int64_t read = FModules->Machine->ReadWholeFile(APath.c_str(), content.data(), size);
  if (read < 0) return std::nullopt;
  content.resize(static_cast<std::size_t>(read));
  return content;
}

}  // namespace varcolin::host
