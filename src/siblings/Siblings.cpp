#include "siblings/Siblings.h"

#include <array>
#include <memory>
#include <mutex>
#include <optional>

#include "siblings/SiblingLibrary.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using TMakeLibrary = std::unique_ptr<TSiblingLibrary> (*)(const TMachine&);

constexpr std::array<TMakeLibrary, 7> Makers{&MakeHelperLibrary,   &MakeLocalizerLibrary, &MakeSettingsLibrary,
                                             &MakeTolvaneLibrary,  &MakeBrismereLibrary,  &MakeQuilletLibrary,
                                             &MakeDebugModeLibrary};

std::mutex StateLock;
std::optional<TMachine> SiblingMachine;
std::array<std::unique_ptr<TSiblingLibrary>, Makers.size()> Libraries;

/// Entry point of library VIndex.
template <std::size_t VIndex>
void* VARCOLIN_CALL EntryPoint(const char16_t* AGuid, std::uint32_t) {
  return Guarded<void*>(nullptr, [&]() -> void* {
    TSiblingLibrary* library = nullptr;
    {
      const std::lock_guard lock(StateLock);
      if (!SiblingMachine) return nullptr;
      if (!Libraries[VIndex]) Libraries[VIndex] = Makers[VIndex](*SiblingMachine);
      library = Libraries[VIndex].get();
    }
    return library->FindInterface(TextOf(AGuid));
  });
}

constexpr std::array<TSiblingExport, Makers.size()> Exports{{
    {u"helper.dll", &EntryPoint<0>},
    {u"Localizer.dll", &EntryPoint<1>},
    {u"Settings.dll", &EntryPoint<2>},
    {u"TolvaneHelper.dll", &EntryPoint<3>},
    {u"BrismereHelper.dll", &EntryPoint<4>},
    {u"QuilletHelper.dll", &EntryPoint<5>},
    {u"debugmode.dll", &EntryPoint<6>},
}};

}  // namespace

std::span<const TSiblingExport> SiblingExports() noexcept { return Exports; }

void TSiblingLibraries::Load(const TMachine& AMachine) {
  Unload();
  const std::lock_guard lock(StateLock);
  SiblingMachine.emplace(AMachine);
}

void TSiblingLibraries::Unload() noexcept {
  const std::lock_guard lock(StateLock);
  for (std::unique_ptr<TSiblingLibrary>& library : Libraries) library.reset();
  SiblingMachine.reset();
}

}  // namespace varcolin
