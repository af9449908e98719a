// Uninstallers that really run: started through the built library, watched by it, and seen to have done their work.
#include <gtest/gtest.h>

#include <cstdlib>

#include "boundary/Host.h"

namespace varcolin::boundary {

namespace {

using enum TPossibleActions;

/// A call of the program that the tests bring along.
std::u16string TestProgram(std::u16string_view AArguments) {
  const std::wstring path = BesideThisProgram(L"test_program.exe");
  return u'"' + std::u16string(path.begin(), path.end()) + u"\" " + std::u16string(AArguments);
}

/// Starts an action; whether the product was idle.
bool Start(IProduct& AProduct, TPossibleActions AAction) {
  TNativeUInt window = 0;
  return AProduct.RunAction(&AAction, &window);
}

bool WaitUntilIdle(IProduct& AProduct) {
  return Eventually([&] { return !IsBusy(AProduct); });
}

TEST(Actions, UninstallOfAnInstalledProgramEmptiesItsEntryOffTheList) {
  const std::wstring setup = _wgetenv(L"VARCOLIN_TEST_SETUP");
  const std::u16string name = u"Larkspur Travel Notes 2.4";
  ASSERT_EQ(RunProgram(setup, L"/S"), 0);
  const TLibrary library;
  ASSERT_TRUE(Discover(library.Manager()));
  const auto product = ProductNamed(library.Manager(), name);
  ASSERT_TRUE(product);
  ASSERT_TRUE(Start(*product, paUninstallQuiet));
  EXPECT_TRUE(Eventually([&] { return ProgramsNamed(library.Manager(), name).empty(); })) << "no refresh is needed";
  EXPECT_TRUE(WaitUntilIdle(*product));
}

TEST(Actions, InstallerPackageIsRemovedByItsInstaller) {
  const std::wstring setup = _wgetenv(L"VARCOLIN_TEST_SETUP");
  const std::wstring package = setup.substr(0, setup.rfind(L'\\') + 1) + L"heron-reader.msi";
  ASSERT_EQ(RunProgram(L"C:\\windows\\system32\\msiexec.exe", L"/i \"" + package + L"\" /qn"), 0);
  const TLibrary library;
  ASSERT_TRUE(Discover(library.Manager()));
  const auto product = ProductNamed(library.Manager(), u"Heron Reader");
  ASSERT_TRUE(product);
  ASSERT_TRUE(Start(*product, paUninstall));
  EXPECT_TRUE(Eventually([&] { return ProgramsNamed(library.Manager(), u"Heron Reader").empty(); }));
  EXPECT_TRUE(WaitUntilIdle(*product));
  EXPECT_EQ(ProgramsNamed(library.Manager(), u"Heron Viewer").size(), 1U) << "the others stay";
}

TEST(Actions, CopyOfTheUninstallerKeepsTheProductBusy) {
  const std::u16string name = u"Varcolin test handover";
  const TUserEntry entry(name, TestProgram(u"handover \"Varcolin test handover\" 1500"));
  const TLibrary library;
  ASSERT_TRUE(Discover(library.Manager()));
  const auto product = ProductNamed(library.Manager(), name);
  ASSERT_TRUE(product);
  ASSERT_TRUE(Start(*product, paModifyRemove));
  EXPECT_TRUE(WaitUntilIdle(*product));
  EXPECT_FALSE(entry.Exists()) << "the copy removes it just before its end";
  EXPECT_TRUE(Eventually([&] { return ProgramsNamed(library.Manager(), name).empty(); }));
}

TEST(Actions, CommandThatCannotBeStartedIsShownOnce) {
  const TUserEntry entry(u"Varcolin test missing", u"C:\\Missing\\missing.exe /x");
  const TLibrary library;
  ASSERT_TRUE(Discover(library.Manager()));
  const auto product = ProductNamed(library.Manager(), u"Varcolin test missing");
  ASSERT_TRUE(product);
  ASSERT_TRUE(Start(*product, paModifyRemove));
  std::u16string message;
  EXPECT_TRUE(Eventually([&] { return !(message = DismissMessage(u"Application Error")).empty(); }));
  EXPECT_NE(message.find(u"Error execute command: \"C:\\Missing\\missing.exe /x\". Message: "), message.npos);
  EXPECT_TRUE(WaitUntilIdle(*product));
  EXPECT_TRUE(DismissMessage(u"Application Error").empty());
}

TEST(Actions, SecondRequestTellsTheWindowAndStopLeavesTheUninstallerAlone) {
  const TUserEntry entry(u"Varcolin test window", TestProgram(u"window \"Varcolin test uninstaller\" 15000"));
  {
    const TLibrary library;
    ASSERT_TRUE(Discover(library.Manager()));
    const auto product = ProductNamed(library.Manager(), u"Varcolin test window");
    ASSERT_TRUE(product);
    ASSERT_TRUE(Start(*product, paModifyRemove));
    TNativeUInt window = 0;
    EXPECT_TRUE(Eventually([&] { return IsBusy(*product, &window) && window != 0; }));
    EXPECT_EQ(TitleOf(window), u"Varcolin test uninstaller");
    TPossibleActions action = paRepair;
    EXPECT_FALSE(product->RunAction(&action, &window));
    EXPECT_EQ(action, paModifyRemove);
    library.Manager().Stop();
    EXPECT_FALSE(IsBusy(*product));
    EXPECT_TRUE(HasWindow(u"Varcolin test uninstaller"));
  }
  EXPECT_TRUE(HasWindow(u"Varcolin test uninstaller")) << "it lives on without the library";
}

}  // namespace

}  // namespace varcolin::boundary
