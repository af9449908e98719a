// Shell link files: what they say, and what is refused.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <span>

#include "common/LinkBuilder.h"
#include "contract/TempFolder.h"
#include "platform/Machine.h"
#include "support/uGuid.h"
#include "support/uShellLinkInfo.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using testing::MakeIDList;
using testing::MakeLinkInfo;
using testing::MakeShare;
using testing::MakeVolume;
using testing::Patch;
using testing::TBytes;
using testing::TLinkBuilder;

class ShellLink : public ::testing::Test {
 protected:
  ShellLink() {
    const TMachine& machine = testing::MachineUnderTest();
    TShellLinkInfo::Load(machine.Files, machine.Shell, machine.System, [](std::u16string_view AText) {
      return AText.starts_with(u'@') ? std::u16string(u"resolved") : std::u16string(AText);
    });
  }
  ~ShellLink() override { TShellLinkInfo::Unload(); }

  /// The message with which a link is refused; empty for one that loads.
  static std::string Refusal(const TBytes& AData, std::u16string_view AName = u"C:\\a.lnk") {
    try {
      const TShellLinkInfo link(AName, AData);
      return {};
    } catch (const TShellLinkInfoException& error) {
      return error.what();
    }
  }
  static std::string PathOf(const TLinkBuilder& ALink) {
    return ToUtf8(TShellLinkInfo(u"a.lnk", ALink.Build()).PathName());
  }
};

constexpr std::string_view WrongForm = "Incorrect file size or format data. (C:\\a.lnk)";
constexpr std::string_view WrongLinkInfo = "Invalid LinkInfo section format (C:\\a.lnk).";

constexpr std::uint32_t EnvironmentBlock = 0xA0000001;
constexpr std::uint32_t ConsoleBlock = 0xA0000002;
constexpr std::uint32_t TrackerBlock = 0xA0000003;
constexpr std::uint32_t IconEnvironmentBlock = 0xA0000007;

/// A link with all that a link can have.
TLinkBuilder FullLink() {
  TLinkBuilder link;
  link.IDList(MakeIDList(u"C:\\Tools\\app.exe"))
      .LinkInfo(MakeLinkInfo({.Flags = 3,
                              .HeaderSize = 0x24,
                              .Volume = MakeVolume(u"System", true),
                              .BasePath = u"C:\\Tools\\",
                              .Share = MakeShare(u"\\\\host\\share", u"Z:", true),
                              .Suffix = u"app.exe",
                              .BasePathUnicode = u"C:\\T\u00F6\u00F6ls\\",
                              .SuffixUnicode = u"\u00E4pp.exe"}))
      .Name(u"@shell32.dll,-22")
      .RelativePath(u"..\\app.exe")
      .WorkingDir(u"C:\\Tools")
      .Arguments(u"/run \"a b\"")
      .IconLocation(u"C:\\Tools\\app.ico")
      .TextBlock(IconEnvironmentBlock, u"%Tools%\\ansi.ico", u"%Tools%\\unicode.ico")
      .Block(0xA0000004, {std::byte{0xB5}, std::byte{1}, {}, {}})
      .Block(0xA0000009, TBytes(33, std::byte{7}));
  link.Times = {116444736000000000, 125911584000000000, 0};  // 1970 and 2000, the third unknown
  link.FileSize = 0xFFFFFFF0;
  link.IconIndex = -7;
  link.ShowCommand = 3;
  link.HotKey = 0x0641;
  return link;
}

TEST_F(ShellLink, SaysAllThatIsInIt) {
  const TBytes data = FullLink().Build();
  const TShellLinkInfo link(u"C:\\Full.LNK", data);
  EXPECT_EQ(link.LinkFileSize(), static_cast<std::int64_t>(data.size()));
  EXPECT_EQ(ToUtf8(link.PathName()), "C:\\Tools\\app.exe");
  EXPECT_EQ(ToUtf8(link.Arguments()), "/run \"a b\"");
  EXPECT_EQ(ToUtf8(link.Description()), "resolved");
  EXPECT_EQ(ToUtf8(link.WorkingDirectory()), "C:\\Tools");
  EXPECT_EQ(ToUtf8(link.IconLocation()), "%Tools%\\unicode.ico");
  EXPECT_EQ(link.IconIndex(), -7);
  EXPECT_EQ(link.ShowCmd(), 3U);
  EXPECT_EQ(link.HotKey(), 0x0641);

  const THeaderInfo& header = link.HeaderInfo();
  EXPECT_EQ(ToUtf8(GuidToText(header.GUID())), "{00021401-0000-0000-C000-000000000046}");
  EXPECT_EQ(header.TargetFileSize(), 0xFFFFFFF0);
  EXPECT_TRUE(header.IsUnicode());
  EXPECT_NEAR(header.CreationTime(), 25569, 1);  // the machine's time zone
  EXPECT_NEAR(header.AccessTime(), 36526, 1);
  EXPECT_LE(header.WriteTime(), 0);

  EXPECT_EQ(ToUtf8(link.LinkTargetIDList().DisplayName()), "app.exe");
  const TLinkInfo& info = link.LinkInfo();
  EXPECT_EQ(ToUtf8(info.LocalBasePath() + info.CommonPathSuffix()), "C:\\T\u00F6\u00F6ls\\\u00E4pp.exe");
  EXPECT_EQ(info.DriveType(), 3U);
  EXPECT_EQ(info.DriveSerialNumber(), 0x1234ABCDU);
  EXPECT_EQ(ToUtf8(info.DriveVolumeLabel()), "System");
  EXPECT_EQ(ToUtf8(info.NetName()), "\\\\host\\share");
  EXPECT_EQ(ToUtf8(info.DeviceName()), "Z:");
  EXPECT_EQ(info.NetworkProviderType(), 0x20000U);
  EXPECT_EQ(ToUtf8(link.StringData().NameString()), "@shell32.dll,-22");
  EXPECT_EQ(ToUtf8(link.StringData().RelativePath()), "..\\app.exe");

  ASSERT_EQ(link.ExtraDataCount(), 3U);
  EXPECT_EQ(link.ExtraData(2).DataType(), TExtraDataType::edtPropertyStoreProps);
  EXPECT_EQ(link.ExtraData(2).Size(), 41U);
  const TExtraData* const codePage = link.ExtraDataByType(TExtraDataType::edtConsoleFEProps);
  ASSERT_EQ(codePage, &link.ExtraData(1));
  EXPECT_EQ(TExtraConsoleFEProps(*codePage).CodePage(), 0x1B5U);
  EXPECT_EQ(link.ExtraDataByType(TExtraDataType::edtTrackerProps), nullptr);
}

TEST_F(ShellLink, BlocksHaveTheFieldsOfTheirFormat) {
  // each byte of a body is its offset in the block
  const auto numbered = [](std::size_t ASize) {
    TBytes body(ASize - 8);
    for (std::size_t index = 0; index < body.size(); ++index) body[index] = static_cast<std::byte>(index + 8);
    return body;
  };
  TLinkBuilder builder;
  for (const auto& [signature, size] : {std::pair<std::uint32_t, std::size_t>{ConsoleBlock, 204},
                                        {TrackerBlock, 96},
                                        {0xA0000005, 16},
                                        {0xA000000B, 28},
                                        {0xA000000A, 8}}) {
    builder.Block(signature, numbered(size));
  }
  const TShellLinkInfo link(u"a.lnk", builder.Build());
  const TExtraConsoleProps console(link.ExtraData(0));
  EXPECT_EQ(console.FillAttributes(), 0x0908);
  EXPECT_EQ(console.WindowOriginY(), 0x1716);
  EXPECT_EQ(console.FontWeight(), 0x2B2A2928U);
  EXPECT_EQ(console.FaceName().substr(0, 1), u"\u2D2C");
  EXPECT_EQ(console.HistoryNoDup(), 0x8B8A8988U);
  EXPECT_EQ(console.GetColorTable(15), 0xCBCAC9C8U);
  EXPECT_EQ(console.GetColorTable(16), 0U);
  const TExtraTrackerProps tracker(link.ExtraData(1));
  EXPECT_EQ(tracker.Version(), 0x0F0E0D0CU);
  EXPECT_EQ(tracker.MachineID().size(), 16U) << "a field without a NUL ends with the field";
  EXPECT_EQ(tracker.Droid1().D1, 0x23222120U);
  EXPECT_EQ(tracker.DroidBirth2().D4[7], 95);
  EXPECT_EQ(TExtraSpecialFolderProps(link.ExtraData(2)).Offset(), 0x0F0E0D0CU);
  EXPECT_EQ(TExtraKnowFolderProps(link.ExtraData(3)).KnownFolderID().D1, 0x0B0A0908U);
  EXPECT_EQ(TExtraKnowFolderProps(link.ExtraData(3)).Offset(), 0x1B1A1918U);
  EXPECT_EQ(link.ExtraData(4).DataType(), TExtraDataType::edtUnknown);
}

TEST_F(ShellLink, TakesThePathFromTheFirstPlaceThatHasOne) {
  const TBytes local = MakeLinkInfo({.BasePath = u"D:\\", .Suffix = u"b.exe"});
  const TBytes network = MakeLinkInfo({.Flags = 2, .Share = MakeShare(u"\\\\h\\s", u""), .Suffix = u"b.exe"});
  const TBytes idList = MakeIDList(u"C:\\a.exe");
  const TBytes broken(20, std::byte{0xFF});
  EXPECT_EQ(PathOf(TLinkBuilder().IDList(idList).LinkInfo(local).TextBlock(EnvironmentBlock, u"%a%", u"%u%")), "%u%");
  EXPECT_EQ(PathOf(TLinkBuilder().IDList(idList).TextBlock(EnvironmentBlock, u"%a%", u"")), "%a%");
  EXPECT_EQ(PathOf(TLinkBuilder().IDList(idList).LinkInfo(local).TextBlock(EnvironmentBlock, u"", u"")), "C:\\a.exe");
  EXPECT_EQ(PathOf(TLinkBuilder().IDList(broken).LinkInfo(local)), "D:\\b.exe");
  EXPECT_EQ(PathOf(TLinkBuilder().IDList({}).LinkInfo(local)), "D:\\b.exe");
  EXPECT_EQ(PathOf(TLinkBuilder().LinkInfo(network)), "\\\\h\\s") << "the net name alone";
  EXPECT_EQ(PathOf(TLinkBuilder().RelativePath(u"x.exe")), "");
  TLinkBuilder forced = TLinkBuilder().LinkInfo(local);
  forced.Flags |= 0x100;
  EXPECT_EQ(PathOf(forced), "") << "the link info does not count";
}

TEST_F(ShellLink, AcceptsTheEdgesOfTheFormat) {
  const auto info = [](const testing::TLinkInfoContent& AContent) {
    return TLinkBuilder().LinkInfo(MakeLinkInfo(AContent)).Build();
  };
  TLinkBuilder bare;
  bare.Tail.clear();
  TLinkBuilder swapped;
  swapped.Class.D4[0] = 0;
  swapped.Class.D4[1] = 0xC0;
  TLinkBuilder ansi = TLinkBuilder().Arguments(std::u16string_view(u"a\0b", 3)).WorkingDir(u"");
  ansi.Flags &= ~TLinkBuilder::Unicode;
  TLinkBuilder shortTail;
  shortTail.Tail = {std::byte{3}, {}, {}, {}};
  TLinkBuilder largest;
  largest.Block(0xA0000009, TBytes(TShellLinkInfo::LargestFile - 76 - 8 - 4));
  const TBytes edges = [] {
    TBytes bytes = MakeLinkInfo({.Volume = MakeVolume(u""), .BasePath = u"C:\\"});
    Patch(bytes, 24, bytes.size(), 4);  // an offset of the very end is one of an empty text
    return bytes;
  }();
  const std::pair<const char*, TBytes> cases[] = {
      {"a header alone", bare.Build()},
      {"the swapped class id", swapped.Build()},
      {"strings of no and of an early end", ansi.Build()},
      {"the largest file", largest.Build()},
      {"a terminal block of size 3", shortTail.Build()},
      {"an offset of the end", TLinkBuilder().LinkInfo(edges).Build()},
      {"a larger header", info({.HeaderSize = 0x30, .BasePath = u"C:\\"})},
      {"texts that nothing reads", info({.Flags = 0, .BasePath = u"C:\\"})},
  };
  for (const auto& [name, data] : cases) EXPECT_EQ(Refusal(data), "") << name;
  EXPECT_EQ(TShellLinkInfo(u"a.lnk", ansi.Build()).Arguments(), u"a");

  // a label offset of exactly 0x14 means Unicode; a net name offset does only above 0x14
  const TShellLinkInfo label(u"a.lnk", info({.Volume = MakeVolume(u"\u0141abel", true)}));
  EXPECT_EQ(label.LinkInfo().DriveVolumeLabel(), u"\u0141abel");
  const TShellLinkInfo share(u"a.lnk", info({.Flags = 2, .Share = MakeShare(u"\\\\h\\s", u"Z:")}));
  EXPECT_EQ(share.LinkInfo().NetName() + share.LinkInfo().DeviceName(), u"\\\\h\\sZ:");
}

TEST_F(ShellLink, RefusesBrokenFilesWithTheirMessage) {
  TLinkBuilder header, guid, extra;
  header.HeaderSize = 77;
  guid.Class.D1 = 0xABCDEF;
  extra.Tail.push_back({});
  TBytes tooLarge(TShellLinkInfo::LargestFile + 1);
  std::ranges::copy(TLinkBuilder().Build(), tooLarge.begin());
  const std::pair<TBytes, std::string_view> cases[] = {
      {{}, WrongForm},
      {TBytes(75), WrongForm},
      {tooLarge, WrongForm},
      {extra.Build(), WrongForm},
      {header.Build(), "Invalid header size \"77\", expected \"76\" (C:\\a.lnk)."},
      {guid.Build(),
       "Invalid file GUID \"{00ABCDEF-0000-0000-C000-000000000046}\", expected "
       "\"{00021401-0000-0000-00C0-000000000046}\" or \"{00021401-0000-0000-C000-000000000046}\" (C:\\a.lnk)."},
      {TLinkBuilder().Block(ConsoleBlock, TBytes(0xC8 - 8)).Build(), WrongForm},
      {TLinkBuilder().Block(EnvironmentBlock, TBytes(100)).Build(), WrongForm},
      {TLinkBuilder().Block(0xA0000009, {}, 7).Build(), WrongForm},
      {TLinkBuilder().Block(0xA0000009, {}, 0xFFFFFFFF).Build(), WrongForm},
      {TLinkBuilder().Block(0xA0000009, {}, 0x80000000).Build(), WrongForm},
  };
  for (const auto& [data, message] : cases) EXPECT_EQ(Refusal(data), message);
  for (const auto& [name, extension] :
       {std::pair(u"a.lnk.txt", ".txt"), std::pair(u"a", ""), std::pair(u"C:\\x.lnk\\a.exe", ".exe")}) {
    EXPECT_EQ(Refusal(TLinkBuilder().Build(), name),
              "Invalid file extension \"" + std::string(extension) + "\", expected \".lnk\" (" + ToUtf8(name) + ").");
  }
}

/// Sections of the link info that lie about themselves: a number of a field, and what it is set to.
TEST_F(ShellLink, RefusesLinkInfoThatLeadsOutOfItself) {
  constexpr std::uint32_t VolumeAt = 0x24;
  const testing::TLinkInfoContent content{.Flags = 3,
                                          .HeaderSize = 0x24,
                                          .Volume = MakeVolume(u"Label"),
                                          .BasePath = u"C:\\",
                                          .Share = MakeShare(u"\\\\h\\s", u"Z:"),
                                          .Suffix = u"a",
                                          .BasePathUnicode = u"C:\\",
                                          .SuffixUnicode = u"a"};
  const TBytes sound = MakeLinkInfo(content);
  const auto size = static_cast<std::uint32_t>(sound.size());
  const auto volumeSize = static_cast<std::uint32_t>(content.Volume.size());
  const std::uint32_t shareAt = VolumeAt + volumeSize + 4;
  const auto shareSize = static_cast<std::uint32_t>(content.Share.size());
  const struct {
    const char* Lie;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> Fields;
  } cases[] = {
      {"its own size", {{0, size + 1}, {0, 0xFFFFFFFF}}},
      {"the size of its header", {{4, 0x20}, {4, 0x1B}, {4, size + 1}}},
      {"offsets behind the end", {{12, size + 1}, {16, size + 1}, {20, size + 1}, {24, size + 1}, {28, size + 1}}},
      {"the largest offset", {{32, 0xFFFFFFFF}}},
      {"no room for the volume, the share, half a unit", {{12, size}, {20, size - 19}, {28, size - 1}}},
      {"the volume's size, the last before its label's terminator",
       {{VolumeAt, 15}, {VolumeAt, size}, {VolumeAt, volumeSize - 1}}},
      {"its label, the last with letters as the offset of a Unicode one",
       {{VolumeAt + 12, volumeSize + 1}, {VolumeAt + 12, 0x14}}},
      {"the share's size", {{shareAt, 19}, {shareAt, shareSize - 1}, {shareAt, 0x80000000}}},
      {"its names, the last with letters as offsets of Unicode ones",
       {{shareAt + 8, shareSize + 1}, {shareAt + 12, shareSize + 1}, {shareAt + 8, 0x15}}},
  };
  EXPECT_EQ(Refusal(TLinkBuilder().LinkInfo(sound).Build()), "");
  for (const auto& [lie, fields] : cases) {
    for (const auto& [field, value] : fields) {
      TBytes info = sound;
      Patch(info, field, value, 4);
      EXPECT_EQ(Refusal(TLinkBuilder().LinkInfo(info).Build()), field == 0 ? WrongForm : WrongLinkInfo)
          << lie << ": " << field << " set to " << value;
    }
  }
  for (const std::size_t length : {0, 3, 4, 27}) {
    TBytes info(length);
    if (length >= 4) Patch(info, 0, length, 4);
    TLinkBuilder link = TLinkBuilder().LinkInfo(info);
    link.Tail.clear();
    EXPECT_EQ(Refusal(link.Build()), length < 4 ? WrongForm : WrongLinkInfo) << length;
  }
  // texts without a terminator that reach the end of the section
  for (const std::uint32_t field : {16U, 24U, 28U, 32U}) {
    TBytes info = sound;
    Patch(info, field, size, 4);
    testing::Append(info, TBytes(4, std::byte{'x'}));
    Patch(info, 0, info.size(), 4);
    EXPECT_EQ(Refusal(TLinkBuilder().LinkInfo(info).Build()), WrongLinkInfo) << field;
  }
}

/// Reads everything that a link says.
std::size_t ReadAll(const TShellLinkInfo& ALink) {
  const TLinkInfo& info = ALink.LinkInfo();
  const TStringData& strings = ALink.StringData();
  std::u16string text = ALink.PathName() + ALink.Arguments() + ALink.Description() + ALink.WorkingDirectory() +
                        ALink.IconLocation() + strings.RelativePath() + info.LocalBasePath() + info.CommonPathSuffix() +
                        info.DriveVolumeLabel() + info.NetName() + info.DeviceName() +
                        ALink.LinkTargetIDList().DisplayName();
  return text.size() + info.DriveType() + static_cast<std::size_t>(ALink.HeaderInfo().WriteTime());
}

TEST_F(ShellLink, EveryCutAndEveryWrongByteIsReadOrRefused) {
  TBytes data = FullLink().Build();
  for (std::size_t length = 0; length < data.size(); ++length) {
    const TBytes cut(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length));
    const std::string text = Refusal(cut);
    EXPECT_TRUE(text == WrongForm || text.empty()) << length << ": " << text;
  }
  for (std::size_t at = 0; at < data.size(); ++at) {
    for (const std::byte wrong : {std::byte{0}, std::byte{0x14}, std::byte{0x7F}, std::byte{0xFF}}) {
      const std::byte right = std::exchange(data[at], wrong);
      try {
        static_cast<void>(ReadAll(TShellLinkInfo(u"a.lnk", std::span<const std::byte>(data))));
      } catch (const TShellLinkInfoException& error) {
        EXPECT_NE(error.Message().find(u"a.lnk"), std::u16string::npos);
      }
      data[at] = right;
    }
  }
}

TEST_F(ShellLink, ReadsFilesAndIsEmptyAfterAFailure) {
  testing::TTempFolder folder;
  TLinkBuilder manyBlocks;
  manyBlocks.Arguments(u"/a");
  for (int block = 0; block < 20; ++block) manyBlocks.Block(0xA0000009, TBytes(12, std::byte{7}));
  const std::u16string good = folder.Write(u"good.LNK", manyBlocks.Build());
  const std::u16string bad = folder.Write(u"bad.lnk", TBytes(10));
  TShellLinkInfo link(good);
  EXPECT_EQ(link.Arguments(), u"/a");
  EXPECT_GT(link.LinkFileSize(), 76);
  ASSERT_EQ(link.ExtraDataCount(), 20U);
  EXPECT_EQ(link.ExtraData(19).Size(), 20U);

  folder.Write(u"good.LNK", FullLink().Arguments(u"/b").Build());
  link.SetFileName(UpperCase(good));
  EXPECT_EQ(link.Arguments(), u"/a") << "the same name reads nothing again";

  EXPECT_THROW(link.SetFileName(bad), TShellLinkInfoException);
  EXPECT_EQ(link.FileName(), bad);
  EXPECT_TRUE(link.Arguments().empty() && link.LinkFileSize() == 0 && link.ExtraDataCount() == 0);
  EXPECT_EQ(link.HeaderInfo().CreationTime(), TShellLinkInfo::MinimumDateTime);
  link.SetFileName(good);
  EXPECT_EQ(link.Arguments(), u"/b");
  EXPECT_EQ(link.ExtraDataCount(), 3U);
  link.SetFileName(u"");
  EXPECT_TRUE(link.Arguments().empty() && link.FileName().empty());

  const std::u16string large = folder.Write(u"large.lnk", TBytes(TShellLinkInfo::LargestFile + 1));
  EXPECT_THROW(link.SetFileName(large), TShellLinkInfoException);
  try {
    link.SetFileName(folder / u"none.lnk");
    ADD_FAILURE() << "there is no such file";
  } catch (const EFOpenError& error) {
    EXPECT_TRUE(error.Message().starts_with(u"Cannot open file \"" + (folder / u"none.lnk") + u"\". ")) << error.what();
  }
}

}  // namespace
}  // namespace varcolin
