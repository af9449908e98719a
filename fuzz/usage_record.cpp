// Names of the shell's usage records, from the registry to the look-up of a program by the same text.
#include "fuzz/Fuzz.h"
#include "fuzz/LoadedLibrary.h"
#include "locations/uLocationExeInfo.h"
#include "products/uItemFolder.h"

namespace varcolin::fuzz {
namespace {

constexpr std::u16string_view CountKey =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\UserAssist\\"
    u"{75048700-EF1F-11D0-9888-006097DEACF9}\\Count";

}  // namespace
}  // namespace varcolin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* AData, std::size_t ASize) {
  using namespace varcolin;
  static fuzz::TLoadedLibrary library{u"C:\\Tools\\Tool.exe", u"C:\\Windows\\tool.exe",
                                      u"C:\\Users\\User\\Desktop\\Tool (x86) 3.lnk"};
  const std::u16string text = fuzz::AsText(fuzz::AsInput(AData, ASize));
  for (const bool isScrambled : {false, true}) {
    fuzz::Check(TLocationExeInfo::UsedPath(text, isScrambled).size() <= text.size(),
                "a path is a part of its record's name");
  }
  TSimulatedRegistry& registry = library.Machine().Registry();
  constexpr std::size_t LongestName = 16'383;
  if (text.size() > LongestName) return 0;
  registry.SetDwordAt(fuzz::CountKey, text, 1);
  TLocationExeInfo(registry, library.Machine().Files()).ReadLocation();
  registry.RemoveTree(fuzz::CountKey);
  const TItemFolder* const item = TItemFolder::ItemByName(text, text);
  fuzz::Check(item == TItemFolder::ItemByName(text, text), "a program belongs to one entry");
  return 0;
}
