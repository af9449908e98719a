#include "benchmarks/DetailsPhase.native.h"

#include <stdexcept>
#include <string>

#include "benchmarks/Figures.h"
#include "benchmarks/ListPhase.h"
#include "benchmarks/UninstallKeys.h"
#include "common/LinkBuilder.h"
#include "common/PeBuilder.h"
#include "common/VersionBytes.h"
#include "library/NativeRoot.h"
#include "locations/uLocationUninstall.h"
#include "products/uItemFolder.h"
#include "products/uItemProgram.h"
#include "support/uText.h"

namespace varcolin::benchmarks {

namespace {

void AddShortcut(TSimulatedFiles& AFiles, std::u16string_view AName, std::u16string_view ATarget) {
  using namespace testing;
  constexpr std::u16string_view Menu = u"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs\\";
  TLinkBuilder link;
  link.LinkInfo(MakeLinkInfo({.Volume = MakeVolume(u"System"), .BasePath = ATarget}));
  AFiles.AddFile(std::u16string(Menu).append(AName).append(u".lnk"), link.Build());
}

testing::TBytes MakeExecutable() {
  using namespace testing;
  TPeBuilder builder;
  builder.Add(
      16, 1,
      Resource({Strings({Table(u"040904B0", {String(u"CompanyName", u"Maker"), String(u"ProductName", u"Product"),
                                             String(u"ProductVersion", u"1.2.3")})}),
                Translations({{TPeBuilder::UsEnglish, 1200}})}));
  return builder.Build();
}

}  // namespace

double DetailsSeconds(std::size_t APrograms) {
  constexpr std::size_t ProgramsPerNamedShortcut = 3;
  const testing::TBytes executable = MakeExecutable();
  TInstalledMachine installed{TSimulatedFacts{}};
  TSimulatedMachine& machine = installed.Machine();
  WriteUninstallKeys(machine.Registry(), TUninstallKeys(APrograms));
  const TListPhase phase(machine.Facilities());
  phase.Run();
  const auto programs = TItemProgram::List().Snapshot();
  for (std::size_t index = 0; index < 2 * programs.size(); ++index) {
    const std::u16string number = IntToStr(static_cast<std::int64_t>(index));
    const bool isNamed = index < programs.size() && index % ProgramsPerNamedShortcut == 0;
    const std::u16string target = u"D:\\Executables\\" + number + u"\\program.exe";
    machine.Files().AddStaticFile(target, executable);
    AddShortcut(machine.Files(), isNamed ? programs[index]->FDisplayName : u"Shortcut " + number + u" of the user",
                target);
  }
  TLocationUninstall::Location(TTypeUninstallLocation::ulExeInfo)->ReadLocation();
  if (TItemFolder::Items().size() != 2 * programs.size()) throw std::runtime_error("shortcuts are missing");
  const double seconds = SecondsOf([&] {
    for (const auto& program : programs) program->ReadSlowInfo();
  });
  return seconds / static_cast<double>(APrograms);
}

}  // namespace varcolin::benchmarks
