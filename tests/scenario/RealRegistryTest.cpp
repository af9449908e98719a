// Registry exports of real machines: each loads, and no visible entry is lost.
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "common/Session.h"
#include "contract/RealFiles.h"
#include "platform/simulated/RegistryText.h"
#include "support/uText.h"

namespace varcolin::testing {
namespace {

std::string AsUtf8(const std::string& AFile) {
  if (!AFile.starts_with("\xFF\xFE")) return AFile;
  std::u16string text((AFile.size() - 2) / 2, u'\0');
  std::memcpy(text.data(), AFile.data() + 2, text.size() * 2);
  return ToUtf8(text);
}

/// The plain names of the visible entries right below an uninstall key, read as lines of text and nothing more.
std::set<std::string> NamesIn(const std::string& AText) {
  std::set<std::string> names;
  std::string name;
  bool isEntry = false;
  bool isHidden = false;
  const auto finish = [&] {
    if (isEntry && !isHidden && !name.empty()) names.insert(name);
    name.clear();
    isHidden = false;
  };
  for (std::size_t begin = 0; begin < AText.size();) {
    const std::size_t end = std::min(AText.find('\n', begin), AText.size());
    std::string line = AText.substr(begin, end - begin);
    begin = end + 1;
    if (line.ends_with('\r')) line.pop_back();
    constexpr std::string_view Parent = "\\Windows\\CurrentVersion\\Uninstall\\";
    constexpr std::string_view Name = "\"DisplayName\"=\"";
    if (line.starts_with('[')) {
      finish();
      const std::size_t parent = line.find(Parent);
      isEntry = parent != std::string::npos && line.find('\\', parent + Parent.size()) == std::string::npos;
    } else if (line.starts_with(Name) && line.find('\\') == std::string::npos) {
      name = line.substr(Name.size(), line.size() - Name.size() - 1);
    } else if (line == "\"SystemComponent\"=dword:00000001") {
      isHidden = true;
    }
  }
  finish();
  return names;
}

TEST(RealRegistryTest, EveryExportLoadsAndNoVisibleEntryIsLost) {
  const auto files = RealFiles("reg", ".reg");
  if (files.empty()) GTEST_SKIP() << "there are no exports of real machines";
  for (const std::filesystem::path& file : files) {
    const std::string bytes = ReadRealFile(file);
    TSession session;
    LoadRegistryText(std::as_bytes(std::span(bytes)), file.filename().string(), session.Machine().Registry());
    session.Discover();
    std::set<std::string> listed;
    for (const auto& products : {session.Programs(), session.Updates()}) {
      for (const auto& product : products) listed.insert(PropertyOf(*product, TPropertyID::DisplayName));
    }
    for (const std::string& name : NamesIn(AsUtf8(bytes))) {
      EXPECT_TRUE(listed.contains(name)) << file.filename() << " names " << name;
    }
  }
}

}  // namespace
}  // namespace varcolin::testing
