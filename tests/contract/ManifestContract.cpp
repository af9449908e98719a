// Package manifests are read alike by every parser.
#include "products/uManifest.h"

#include <gtest/gtest.h>

#include "contract/MachineUnderTest.h"
#include "contract/PlainTags.h"
#include "contract/RealFiles.h"
#include "platform/Com.h"
#include "platform/Xml.h"
#include "support/uText.h"

namespace varcolin {
namespace {

std::string Text(std::optional<std::u16string_view> AText) { return AText ? ToUtf8(*AText) : std::string(); }

TEST(ManifestContract, RealManifestsAreReadAsTheirTextSays) {
  const auto files = testing::RealFiles("mum", ".mum");
  if (files.empty()) GTEST_SKIP() << "there are no manifests of real machines";
  auto& machine = testing::MachineUnderTest();
  const TComScope com(machine.Com, ECom::Apartment);
  for (const auto& file : files) {
    const std::string bytes = testing::ReadRealFile(file);
    TManifestReader reader(machine.Xml);
    TManifest manifest;
    ASSERT_EQ(reader.Read(std::as_bytes(std::span(bytes)), manifest), WinError::Success) << file;
    const testing::TPlainTags tags(bytes);
    const std::string_view assembly = tags.First("assembly");
    const std::string_view identity = tags.First("assemblyIdentity");
    const std::string_view package = tags.First("package");
    EXPECT_EQ(ToUtf8(manifest.DisplayName), tags.Value(assembly, "displayName")) << file;
    EXPECT_EQ(ToUtf8(manifest.Description), tags.Value(assembly, "description")) << file;
    EXPECT_EQ(ToUtf8(manifest.Company), tags.Value(assembly, "company")) << file;
    EXPECT_EQ(ToUtf8(manifest.SupportInformation), tags.Value(assembly, "supportInformation")) << file;
    EXPECT_EQ(Text(manifest.IdentityName), tags.Value(identity, "name")) << file;
    EXPECT_EQ(ToUtf8(manifest.Version), tags.Value(identity, "version")) << file;
    EXPECT_EQ(ToUtf8(manifest.Language), tags.Value(identity, "language")) << file;
    EXPECT_EQ(Text(manifest.Identifier), tags.Value(package, "identifier")) << file;
    EXPECT_EQ(Text(manifest.ReleaseTypeName), tags.Value(package, "releaseType")) << file;
    std::vector<std::string> contained;
    for (const std::u16string_view name : manifest.ContainedNames) contained.push_back(ToUtf8(name));
    EXPECT_EQ(contained, tags.ContainedNames()) << file;
  }
}

TEST(ManifestContract, AnythingElseGivesAnEmptyManifestOrAnError) {
  auto& machine = testing::MachineUnderTest();
  const TComScope com(machine.Com, ECom::Apartment);
  const std::string whole =
      "<assembly displayName='d'><assemblyIdentity name='n'/><package identifier='i' releaseType='r'><update><package>"
      "<assemblyIdentity name='c'/></package></update></package></assembly>";
  TManifestReader reader(machine.Xml);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    TManifest manifest;
    manifest.Version = u"untouched";
    EXPECT_EQ(reader.Read(std::as_bytes(std::span(whole)).first(length), manifest), WinError::BadFormat);
    EXPECT_EQ(manifest.Version, u"untouched");
  }
  const std::string_view other = "<x displayName='d'><assembly displayName='d'/></x>";
  TManifest manifest;
  EXPECT_EQ(reader.Read(std::as_bytes(std::span(other)), manifest), WinError::Success);
  EXPECT_EQ(manifest.DisplayName, u"");
  EXPECT_FALSE(manifest.IdentityName);
}

}  // namespace
}  // namespace varcolin
