// The exports of the native library.
#include <algorithm>
#include <cstring>
#include <filesystem>

#include "intf/intf_Machine.h"
#include "library/NativeRoot.h"
#include "library/uVarcolin.h"
#include "platform/Files.h"
#include "platform/simulated/Embedded.h"
#include "platform/simulated/MachineImage.h"
#include "siblings/Siblings.h"
#include "support/uExceptions.h"
#include "support/uInterfacedObject.h"
#include "support/uText.h"

namespace varcolin {

namespace {

/// The machine that was chosen, until the process ends.
std::unique_ptr<TNativeRoot>& Root() {
  static std::unique_ptr<TNativeRoot> root;
  return root;
}

class TMachineView final : public TInterfacedObject<IMachine> {
 public:
  void* VARCOLIN_CALL GetSiblingInstance(const char16_t* ALibrary, const char16_t* AGuid) override {
    if (ALibrary == nullptr || AGuid == nullptr) return nullptr;
    for (const TSiblingExport& sibling : SiblingExports()) {
      if (SameText(sibling.Name, ALibrary)) return sibling.GetInstance(AGuid, 0);
    }
    return nullptr;
  }
  std::int64_t VARCOLIN_CALL GetSizeOfFile(const char16_t* APath) override {
    std::vector<std::byte> data;
    return Read(APath, data) ? static_cast<std::int64_t>(data.size()) : -1;
  }
  std::int64_t VARCOLIN_CALL ReadWholeFile(const char16_t* APath, void* ABuffer, std::int64_t ASize) override {
    std::vector<std::byte> data;
    if (ABuffer == nullptr || ASize <= 0 || !Read(APath, data)) return 0;
    const std::size_t size = std::min<std::size_t>(data.size(), static_cast<std::size_t>(ASize));
    if (size > 0) std::memcpy(ABuffer, data.data(), size);
    return static_cast<std::int64_t>(size);
  }

  void VARCOLIN_CALL GetTitleOfWindow(TNativeUInt AWindow, TOleString* AResult) override {
    if (AResult != nullptr) *AResult = AllocOleString(Root()->Machine().Windows().GetTitle(AWindow));
  }
  bool VARCOLIN_CALL TakeMessage(TOleString* AResult) override {
    const auto shown = Root()->Machine().Messages().Shown();
    if (AResult == nullptr || FTaken >= shown.size()) return false;
    *AResult = AllocOleString(shown[FTaken++].Text);
    return true;
  }

  bool VARCOLIN_CALL GetSizeOfImages(TNativeUInt AImageList, std::int32_t* AWidth, std::int32_t* AHeight) override {
    const TImageSize size = Root()->Machine().Icons().SizeOf(AImageList);
    if (AWidth != nullptr) *AWidth = static_cast<std::int32_t>(size.Width);
    if (AHeight != nullptr) *AHeight = static_cast<std::int32_t>(size.Height);
    return size.Width != 0;
  }
  bool VARCOLIN_CALL DrawImage(TNativeUInt AImageList, std::int32_t AIndex, void* ABuffer,
                               std::int64_t ASize) override {
    try {
      const std::optional<TIconPixels> pixels = Root()->Machine().Icons().Draw(AImageList, AIndex);
      if (ABuffer == nullptr || !pixels || ASize < static_cast<std::int64_t>(pixels->Bytes.size())) return false;
      std::memcpy(ABuffer, pixels->Bytes.data(), pixels->Bytes.size());
      return true;
    } catch (const std::exception&) {
      return false;  // a picture too large for memory cannot be drawn
    }
  }

 private:
  std::size_t FTaken = 0;  // message boxes that were taken

  static bool Read(const char16_t* APath, std::vector<std::byte>& AData) noexcept {
    try {
      return Root()->Machine().Files().ReadWhole(TextOf(APath), SIZE_MAX, AData) == WinError::Success;
    } catch (const std::exception&) {
      return false;  // a file too large for memory cannot be read
    }
  }
};

/// The one view of the chosen machine; it keeps a reference to itself for the process's life.
IMachine* MachineView() {
  static const TInterfaceRef<IMachine> view = MakeObject<TMachineView, IMachine>();
  return view.Get();
}

void Choose(const char* AImageFolder) {
  if (Root()) throw Exception(u"A machine has been chosen already.");
  if (AImageFolder != nullptr) {
    Root() = std::make_unique<TNativeRoot>(TFolderImage(std::filesystem::path(AImageFolder)));
  } else {
    Root() = std::make_unique<TNativeRoot>(TEmbeddedImage(EmbeddedMachine()));
  }
}

}  // namespace

}  // namespace varcolin

#define VARCOLIN_EXPORT extern "C" __attribute__((visibility("default")))

VARCOLIN_EXPORT varcolin::IMachine* SelectMachine(const char* AImageFolder, varcolin::TOleString* AError) {
  if (AError != nullptr) *AError = nullptr;
  try {
    varcolin::Choose(AImageFolder);
    return varcolin::MachineView();
  } catch (const std::exception&) {
    if (AError != nullptr) *AError = varcolin::AllocOleString(varcolin::CurrentErrorText().Message);
    return nullptr;
  }
}

VARCOLIN_EXPORT void* GetInstance(const char16_t* AGuid, std::uint32_t /*AParam*/) {
  try {
    if (!varcolin::Root()) varcolin::Choose(nullptr);
    return varcolin::TVarcolin::Instance(AGuid);
  } catch (const std::exception&) {
    return nullptr;
  }
}
