// Shell link files: each is read, all of it, or refused with the parser's own exception.
#include "fuzz/Fuzz.h"
#include "library/uShellLinkFile.h"
#include "platform/simulated/SimulatedMachine.h"

namespace varcolin::fuzz {
namespace {

class TLoadedParser {
 public:
  TLoadedParser() {
    TShellLinkInfo::Load(FMachine.Files(), FMachine.Shell(), FMachine.System(),
                         [](std::u16string_view AText) { return std::u16string(AText); });
  }
  ~TLoadedParser() { TShellLinkInfo::Unload(); }

 private:
  TSimulatedMachine FMachine;
};

void ReadAll(IShellLinkFile& ALink) {
  TOleText text;
  TVariantValue value;
  for (const auto get : {&IShellLinkFile::GetPathName, &IShellLinkFile::GetArguments, &IShellLinkFile::GetDescription,
                         &IShellLinkFile::GetWorkingDirectory, &IShellLinkFile::GetIconLocation}) {
    (ALink.*get)(text.Receive());
    Check(text.View().size() <= TShellLinkInfo::LargestFile, "no text is longer than a file");
  }
  for (std::int32_t section = 0; section < ALink.GetSectionCount(); ++section) {
    ALink.GetSectionName(section, text.Receive());
    Check(!text.View().empty(), "each section has a name");
    for (std::int32_t field = 0; field < ALink.GetFieldCount(section); ++field) {
      ALink.GetFieldValue(section, field, value.Receive());
      Check(value.Value().Type != EVariantType::Empty, "each field has a value");
    }
  }
}

}  // namespace
}  // namespace varcolin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* AData, std::size_t ASize) {
  using namespace varcolin;
  static const fuzz::TLoadedParser parser;
  const std::span<const std::byte> input = fuzz::AsInput(AData, ASize);
  try {
    const auto link =
        MakeObject<TShellLinkFile, IShellLinkFile>(u"a.lnk", std::vector<std::byte>(input.begin(), input.end()));
    fuzz::ReadAll(*link);
  } catch (const TShellLinkInfoException&) {
  }
  return 0;
}
