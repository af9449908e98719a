// The built Varcolin.dll, as a host meets it: loaded, asked, stopped and freed again. The programs that it lists were
// installed by real installers before; the environment names the installer that the live test runs itself.
#include <gtest/gtest.h>
#include <process.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>

#include "boundary/Host.h"
#include "intf/intf_ShellLink.h"

namespace varcolin::boundary {

using namespace std::string_literals;

namespace {

constexpr TPossibleActionsSet Actions(std::initializer_list<TPossibleActions> AActions) {
  TPossibleActionsSet set = 0;
  for (const TPossibleActions action : AActions) set |= ActionBit(action);
  return set;
}

/// What every program says of itself when nothing else is known.
std::vector<TProperty> UnknownProgram() {
  std::vector<TProperty> properties(22, u""s);
  properties[static_cast<std::size_t>(TPropertyID::InstallDate)] = TDateTime{0};
  properties[static_cast<std::size_t>(TPropertyID::EstimatedSize)] = std::int64_t{0};
  properties[static_cast<std::size_t>(TPropertyID::LastUsedDate)] = TDateTime{0};
  properties[static_cast<std::size_t>(TPropertyID::Usage)] = static_cast<std::int32_t>(TUsedType::utRarely);
  properties[static_cast<std::size_t>(TPropertyID::Rating)] = static_cast<std::int32_t>(TSoftwareRating::stUnknown);
  return properties;
}

std::vector<TProperty> Program(std::initializer_list<std::pair<TPropertyID, TProperty>> AKnown) {
  std::vector<TProperty> properties = UnknownProgram();
  for (const auto& [id, value] : AKnown) properties[static_cast<std::size_t>(id)] = value;
  return properties;
}

TEST(Export, ServesTheManagerForItsGuidAndNothingElse) {
  const TLibrary library;
  const std::u16string huge(1'000'000, u'{');
  const std::u16string_view braced = VarcolinGuidText;
  const std::u16string bare(braced.substr(1, braced.size() - 2));
  const std::u16string longer = std::u16string(braced) + u" ";
  const std::array<const char16_t*, 9> refused{
      nullptr,         u"",          u"{",         u"garbage",    u"{D1465CA9-77C6-49DF-929C-4E4D64730203}",
      u"\xD800\xFFFF", huge.c_str(), bare.c_str(), longer.c_str()};
  for (const char16_t* const guid : refused) EXPECT_EQ(library.GetInstance(guid), nullptr);

  void* const manager = library.GetInstance(VarcolinGuidText.data());
  ASSERT_NE(manager, nullptr);
  EXPECT_EQ(library.GetInstance(VarcolinGuidText.data()), manager);
  EXPECT_EQ(library.GetInstance(u"{d1465ca9-77c6-49df-929c-4e4d64730201}"), manager);
}

TEST(Manager, AnswersForItsInterfacesOnly) {
  const TLibrary library;
  IVarcolin& manager = library.Manager();
  for (const TGUID& iid : {IInterface::IID, IVarcolin::IID}) {
    TInterfaceRef<IVarcolin> same;
    EXPECT_EQ(manager.QueryInterface(iid, reinterpret_cast<void**>(same.Receive())), ResultOk);
    EXPECT_EQ(same.Get(), &manager);
  }
  void* other = &manager;
  EXPECT_EQ(manager.QueryInterface(IProduct::IID, &other), ResultNoInterface);
  EXPECT_EQ(other, nullptr);
}

TEST(Manager, GivesBackTheHostEventAsItWasSet) {
  const TLibrary library;
  IVarcolin& manager = library.Manager();
  TEventHandler handler{&manager, &manager};
  manager.GetHostEvent(&handler);
  EXPECT_EQ(handler.Code, nullptr);
  EXPECT_EQ(handler.Object, nullptr);

  int code = 0;
  int object = 0;
  const TEventHandler set{&code, &object};
  manager.SetHostEvent(&set);
  manager.GetHostEvent(&handler);
  EXPECT_EQ(handler.Code, &code);
  EXPECT_EQ(handler.Object, &object);
}

TEST(Library, LoadsAndListsAgainAfterItWasFreed) {
  for (int round = 0; round < 3; ++round) {
    const TLibrary library;
    EXPECT_EQ(library.Manager().GetState(), TVRCState::vrcsListLoading);
    EXPECT_TRUE(ProgramsNamed(library.Manager(), u"Heron Viewer").empty()) << "before the first Refresh";
    ASSERT_TRUE(Discover(library.Manager()));
    EXPECT_EQ(ProgramsNamed(library.Manager(), u"Heron Viewer").size(), 1U);
  }
}

TEST(Library, MayBeFreedWhileItStillReads) {
  for (int round = 0; round < 5; ++round) {
    const TLibrary library;
    library.Manager().Refresh();
  }
}

TEST(Library, EndsTheProcessWithAMessageWhenASiblingIsMissing) {
  namespace fs = std::filesystem;
  const fs::path alone = BesideThisProgram(L"alone");
  fs::remove_all(alone);
  fs::create_directory(alone);
  for (const wchar_t* const name : {L"varcolin.exe", L"Varcolin.dll"}) fs::copy(BesideThisProgram(name), alone / name);

  const std::wstring host = (alone / L"varcolin.exe").wstring();
  const std::intptr_t process = _wspawnl(_P_NOWAIT, host.c_str(), host.c_str(), L"programs", nullptr);
  ASSERT_NE(process, -1);
  std::u16string message;
  EXPECT_TRUE(Eventually([&message] { return !(message = DismissMessage(u"Error")).empty(); }));
  EXPECT_TRUE(message.starts_with(u"An error occurred while loading library helper.dll::"));
  int exitCode = 0;
  EXPECT_EQ(_cwait(&exitCode, process, 0), process);
  EXPECT_NE(exitCode, 0);
  fs::remove_all(alone);
}

TEST(Programs, TellsEverythingOfAnInstalledProgram) {
  const TLibrary library;
  ASSERT_TRUE(Discover(library.Manager()));
  const std::vector<TListed> found = ProgramsNamed(library.Manager(), u"Larkspur Notes 2.4");
  ASSERT_EQ(found.size(), 1U);
  // the time at which the file behind its start menu entry was read last: as it was installed, by this very test run
  const TProperty& used = found[0].Properties[static_cast<std::size_t>(TPropertyID::LastUsedDate)];
  EXPECT_GT(std::get<TDateTime>(used), 46'000);
  EXPECT_EQ(found[0].Properties, Program({
                                     {TPropertyID::DisplayName, u"Larkspur Notes 2.4"s},
                                     {TPropertyID::DisplayVersion, u"2.4.1"s},
                                     {TPropertyID::Publisher, u"Larkspur Works"s},
                                     {TPropertyID::InstallLocation, u"C:\\Program Files (x86)\\Larkspur Notes\\"s},
                                     {TPropertyID::InstallDate, TDateTime{41'130}},
                                     {TPropertyID::Comments, u"Notes that stay where they are put"s},
                                     {TPropertyID::HelpLink, u"http://larkspur.example/help"s},
                                     {TPropertyID::SupportLink, u"http://larkspur.example/"s},
                                     {TPropertyID::EstimatedSize, std::int64_t{1536 * 1024}},
                                     {TPropertyID::LastUsedDate, used},
                                 }));
  EXPECT_EQ(found[0].Actions, Actions({TPossibleActions::paUninstall, TPossibleActions::paUninstallQuiet,
                                       TPossibleActions::paRemoveFromRegistry}));
  EXPECT_GT(found[0].IconIndex, 3) << "the icon of its uninstaller, not the default one";
}

TEST(Programs, ShowTheirIconsInTheHost) {
  const std::filesystem::path file = BesideThisProgram(L"larkspur.PNG");
  std::filesystem::remove(file);
  ASSERT_EQ(RunProgram(BesideThisProgram(L"varcolin.exe"), L"icon \"larkspur notes\" -o \"" + file.wstring() + L'"'),
            0);
  std::ifstream stream(file, std::ios::binary);
  const std::string picture(std::istreambuf_iterator<char>(stream), {});
  EXPECT_EQ(picture.substr(0, 24), "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x20\0\0\0\x20"s);
  EXPECT_GT(picture.size(), 200U) << "a picture without a shape takes less";
  stream.close();
  std::filesystem::remove(file);
}

TEST(Programs, TellsEverythingOfAnInstallerPackage) {
  const TLibrary library;
  ASSERT_TRUE(Discover(library.Manager()));
  const std::vector<TListed> found = ProgramsNamed(library.Manager(), u"Heron Viewer");
  ASSERT_EQ(found.size(), 1U) << "its uninstall key and its installer data are one program";
  const std::vector<TProperty>& properties = found[0].Properties;
  const TProperty& date = properties[static_cast<std::size_t>(TPropertyID::InstallDate)];
  EXPECT_GT(std::get<TDateTime>(date), 46'000) << "installed by this very test run";
  const std::u16string source = found[0].Text(TPropertyID::InstallSource);
  EXPECT_TRUE(source.ends_with(u"\\installers\\"));
  EXPECT_EQ(properties, Program({
                            {TPropertyID::DisplayName, u"Heron Viewer"s},
                            {TPropertyID::DisplayVersion, u"3.1.4"s},
                            {TPropertyID::Publisher, u"Heron Software"s},
                            {TPropertyID::InstallSource, source},
                            {TPropertyID::InstallDate, date},
                            {TPropertyID::Contact, u"Heron Software support"s},
                            {TPropertyID::Comments, u"Looks at pictures, standing on one leg"s},
                            {TPropertyID::HelpLink, u"http://heron.example/help"s},
                            {TPropertyID::SupportLink, u"http://heron.example/"s},
                            {TPropertyID::SupportTelephone, u"555 0100"s},
                            {TPropertyID::UpdateInfoLink, u"http://heron.example/news"s},
                            {TPropertyID::Language, u"English (United States)"s},
                            {TPropertyID::Guid, u"{7B1F9A52-3C64-4E0B-9D27-5A8E61C4F0D3}"s},
                        }));
  EXPECT_EQ(found[0].Actions, Actions({TPossibleActions::paUninstall, TPossibleActions::paModify,
                                       TPossibleActions::paRemoveFromRegistry}));
}

TEST(Programs, KeepsToTheEdgesOfListAndProperties) {
  const TLibrary library;
  ASSERT_TRUE(Discover(library.Manager()));
  TInterfaceRef<IProductCollection> programs;
  library.Manager().GetPrograms(programs.Receive());
  TInterfaceRef<IProductCollection> again;
  library.Manager().GetPrograms(again.Receive());
  EXPECT_NE(programs.Get(), again.Get());
  EXPECT_EQ(programs->GetSupportedProperties(), 0x3DFFFFU);
  EXPECT_NE(programs->GetIconListSmall(), 0U);
  EXPECT_NE(programs->GetIconListLarge(), 0U);
  for (const std::int32_t index : {-1, programs->GetCount(), INT32_MAX, INT32_MIN}) {
    TInterfaceRef<IProduct> product(nullptr);
    programs->GetItem(index, product.Receive());
    EXPECT_FALSE(product) << index;
  }
  ASSERT_GT(programs->GetCount(), 0);
  TInterfaceRef<IProduct> product;
  programs->GetItem(0, product.Receive());
  for (const std::int32_t id : {-1, 22, 23, 24, 25, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(ReadProperty(*product, id), TProperty()) << id;
  }
  EXPECT_TRUE(product->IsNotHost());
  EXPECT_TRUE(product->IsChanged());
  EXPECT_FALSE(product->IsChanged());
}

TEST(Links, AreReadThroughTheManager) {
  const TLibrary library;
  TInterfaceRef<IShellLinkReader> reader;
  ASSERT_EQ(library.Manager().QueryInterface(IShellLinkReader::IID, reinterpret_cast<void**>(reader.Receive())),
            ResultOk);
  EXPECT_EQ(library.GetInstance(u"{D1465CA9-77C6-49DF-929C-4E4D64730242}"), nullptr) << "the manager alone has it";
  // a header with an icon index, and a string of two characters
  std::string bytes("\x4C\0\0\0\x01\x14\x02\0\0\0\0\0\xC0\0\0\0\0\0\0\x46\x20\0\0\0", 24);
  bytes.resize(76);
  bytes[56] = '\x05';
  bytes += std::string("\x02\0/a", 4);
  TOleText error;
  TInterfaceRef<IShellLinkFile> link;
  reader->ReadLink(u"a.lnk", bytes.data(), static_cast<std::int64_t>(bytes.size()), error.Receive(), link.Receive());
  ASSERT_TRUE(link);
  EXPECT_TRUE(error.View().empty());
  EXPECT_EQ(link->GetIconIndex(), 5);
  TOleText text;
  link->GetArguments(text.Receive());
  EXPECT_EQ(text.View(), u"/a");
  ASSERT_EQ(link->GetSectionCount(), 2);
  for (const std::int32_t index : {-1, 2, INT32_MAX}) {
    EXPECT_EQ(link->GetFieldCount(index), 0);
    link->GetFieldName(0, index + 1000, text.Receive());
    EXPECT_TRUE(text.View().empty());
  }
  for (const auto& [name, data, size] : {std::tuple<const char16_t*, const char*, std::int64_t>{u"a.txt", "", 0},
                                         {u"a.lnk", nullptr, 100},
                                         {u"a.lnk", "", -1},
                                         {nullptr, "", 0}}) {
    reader->ReadLink(name, data, size, error.Receive(), link.Receive());
    EXPECT_FALSE(link);
    EXPECT_FALSE(error.View().empty());
  }
}

TEST(Programs, FollowsAnInstallationAndARemoval) {
  const wchar_t* const setup = _wgetenv(L"VARCOLIN_TEST_SETUP");
  ASSERT_NE(setup, nullptr) << "names the installer of Larkspur Travel Notes";
  const std::u16string name = u"Larkspur Travel Notes 2.4";
  const TLibrary library;
  ASSERT_TRUE(Discover(library.Manager()));
  ASSERT_TRUE(ProgramsNamed(library.Manager(), name).empty());

  ASSERT_EQ(RunProgram(setup, L"/S"), 0);
  std::vector<TListed> listed;
  ASSERT_TRUE(Eventually([&] { return (listed = ProgramsNamed(library.Manager(), name)).size() == 1; }));
  const std::wstring uninstall = L"C:\\Program Files (x86)\\Larkspur Travel Notes\\uninstall.exe";
  EXPECT_EQ(listed[0].Text(TPropertyID::Publisher), u"Larkspur Works");

  ASSERT_EQ(RunProgram(uninstall, L"/S"), 0);
  EXPECT_TRUE(Eventually([&] { return ProgramsNamed(library.Manager(), name).empty(); }));
  EXPECT_EQ(ProgramsNamed(library.Manager(), u"Larkspur Notes 2.4").size(), 1U) << "the others stay";
}

}  // namespace

}  // namespace varcolin::boundary
