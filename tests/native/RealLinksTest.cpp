// Shell links of real machines and of other programs: each is read or refused in words, and what a well-formed one says
// is what the "lnkinfo" of the Debian package liblnk-utils reads in it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <memory>

#include "contract/MachineUnderTest.h"
#include "contract/RealFiles.h"
#include "platform/Files.h"
#include "support/uPaths.h"
#include "support/uShellLinkInfo.h"
#include "support/uText.h"

namespace varcolin::testing {
namespace {

class RealLinks : public ::testing::Test {
 protected:
  RealLinks() : Files(RealFiles("lnk")) {
    std::erase_if(Files, [](const auto& AFile) { return AFile.extension() == ".tsv"; });
    const TMachine& machine = MachineUnderTest();
    TShellLinkInfo::Load(machine.Files, machine.Shell, machine.System,
                         [](std::u16string_view AText) { return std::u16string(AText); });
  }
  ~RealLinks() override { TShellLinkInfo::Unload(); }

  /// The link of a file, or the message with which it is refused. Not all files bear the name of a link.
  static std::unique_ptr<TShellLinkInfo> Open(const std::filesystem::path& AFile, std::string& AMessage) {
    const std::string bytes = ReadRealFile(AFile);
    const auto data = std::as_bytes(std::span(bytes));
    try {
      return std::make_unique<TShellLinkInfo>(u"file.lnk", std::vector(data.begin(), data.end()));
    } catch (const TShellLinkInfoException& error) {
      AMessage = error.what();
      return nullptr;
    }
  }

  std::vector<std::filesystem::path> Files;
};

/// What lnkinfo prints: its labels with their values.
std::map<std::string, std::string> Described(const std::filesystem::path& AFile) {
  std::string quoted;
  for (const char character : AFile.string()) quoted += character == '\'' ? "'\\''" : std::string(1, character);
  const std::string command = "LC_ALL=C.UTF-8 lnkinfo '" + quoted + "' 2>&1";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), &pclose);
  std::map<std::string, std::string> facts;
  std::array<char, 65'536> line{};
  while (fgets(line.data(), line.size(), pipe.get()) != nullptr) {
    const std::string_view text = line.data();
    const std::size_t colon = text.find("\t: ");
    if (colon == std::string_view::npos || text.front() != '\t') continue;
    std::string label(text.substr(1, colon - 1));
    label.erase(label.find_last_not_of('\t') + 1);
    std::string value(text.substr(colon + 3));
    if (value.ends_with('\n')) value.pop_back();
    facts.emplace(std::move(label), std::move(value));
  }
  return facts;
}

TEST_F(RealLinks, EveryFileIsReadOrRefusedInWords) {
  if (Files.empty()) GTEST_SKIP() << "there are no links of real machines";
  constexpr std::array beginnings{"Invalid file extension ", "Incorrect file size or format data. ",
                                  "Invalid header size ", "Invalid file GUID ", "Invalid LinkInfo section format "};
  std::size_t read = 0;
  for (const auto& file : Files) {
    std::string message;
    const auto link = Open(file, message);
    if (link == nullptr) {
      EXPECT_TRUE(std::ranges::any_of(beginnings, [&](auto* ABeginning) { return message.starts_with(ABeginning); }))
          << file << ": " << message;
      continue;
    }
    ++read;
    if (link->LinkTargetIDList().IDList().empty() && !link->LinkInfo().IsExists() && link->ExtraDataCount() == 0) {
      EXPECT_TRUE(link->PathName().empty()) << file;
    }
    // where the list of items leads to a path, the link info names the same file
    const std::u16string items = link->LinkTargetIDList().Path();
    const std::u16string path = link->LinkInfo().LocalBasePath() + link->LinkInfo().CommonPathSuffix();
    if (items.starts_with(u"::") || items.empty() || path.empty()) continue;
    EXPECT_EQ(ToUtf8(ExtractFileName(items)), ToUtf8(ExtractFileName(path))) << file;
  }
  EXPECT_GT(read, Files.size() * 9 / 10);
}

TEST_F(RealLinks, SayWhatLnkinfoReadsInThem) {
  if (Files.empty()) GTEST_SKIP() << "there are no links of real machines";
  if (std::system("command -v lnkinfo >/dev/null") != 0) GTEST_SKIP() << "lnkinfo (liblnk-utils) is not installed";
  std::map<std::string, std::size_t> compared;
  for (const auto& file : Files) {
    std::string message;
    const auto link = Open(file, message);
    if (link == nullptr) continue;
    const auto facts = Described(file);
    const TLinkInfo& info = link->LinkInfo();
    const TStringData& strings = link->StringData();
    const std::pair<const char*, std::u16string> own[] = {
        {"Local path", info.LocalBasePath() + info.CommonPathSuffix()},
        {"Command line arguments", strings.Arguments()},
        {"Working directory", strings.WorkingDir()},
        {"Icon location", link->IconLocation()},
        {"Volume label", info.DriveVolumeLabel()},
        {"Relative path", strings.RelativePath()},
        {"Description", strings.NameString()},
    };
    for (const auto& [label, text] : own) {
      const auto theirs = facts.find(label);
      if (theirs == facts.end() || text.empty()) continue;
      // lnkinfo loses what stands behind a lone surrogate
      if (theirs->second.find("\uFFFD") != std::string::npos) continue;
      EXPECT_EQ(ToUtf8(text), theirs->second) << file << ": " << label;
      ++compared[label];
    }
  }
  for (const char* label :
       {"Local path", "Command line arguments", "Working directory", "Icon location", "Volume label"}) {
    EXPECT_GT(compared[label], 20U) << label;
  }
}

}  // namespace
}  // namespace varcolin::testing
