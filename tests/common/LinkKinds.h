// Links of the kinds that real machines hold.
#pragma once

#include <string>

#include "common/LinkBuilder.h"

namespace varcolin::testing {

inline constexpr std::size_t LinkKindCount = 8;

/// Blocks that nearly every link of the shell has.
inline void AddUsualBlocks(TLinkBuilder& ALink) {
  TBytes folder;
  Put(folder, 38, 4);  // the program files
  Put(folder, 0x50, 4);
  TBytes known;
  PutGuid(known, {0x905E63B6, 0xC1BF, 0x494E, {0xB2, 0x9C, 0x65, 0xB7, 0x32, 0xD3, 0xD2, 0x1A}});
  Put(known, 0x50, 4);
  TBytes tracker;
  Put(tracker, 0x58, 4);
  Put(tracker, 0, 4);
  PutText(tracker, u"workstation-07", false);
  tracker.resize(88, std::byte{0x5A});
  ALink.Block(0xA0000005, folder).Block(0xA000000B, known).Block(0xA0000003, tracker);
}

/// A link of kind ANumber % LinkKindCount, with a target of its own.
inline TBytes MakeRealLink(std::size_t ANumber) {
  std::u16string number;
  for (std::size_t rest = ANumber; rest != 0 || number.empty(); rest /= 10) {
    number.insert(number.begin(), static_cast<char16_t>(u'0' + rest % 10));
  }
  const std::u16string folder = u"C:\\Program Files (x86)\\Maker " + number + u"\\Product\\";
  const std::u16string path = folder + u"program" + number + u".exe";
  const TBytes local = MakeLinkInfo({.Volume = MakeVolume(u"System"), .BasePath = path});
  TLinkBuilder link;
  link.Times = {129887712000000000, 129887712000000000, 129887712000000000};
  link.FileSize = 123'456;
  switch (ANumber % LinkKindCount) {
    case 0:  // an installer's, in the start menu
      link.IDList(MakeIDList(path)).LinkInfo(local).Name(u"Starts Product " + number).WorkingDir(folder);
      link.RelativePath(u"..\\..\\..\\..\\Program Files (x86)\\Maker\\Product\\program.exe").IconLocation(path);
      AddUsualBlocks(link);
      link.Block(0xA0000009, TBytes(480, std::byte{0x31}));
      break;
    case 1:  // one of the system, with variables in its target
      link.IDList(MakeIDList(u"C:\\Windows\\System32\\tool" + number + u".exe"))
          .LinkInfo(local)
          .Name(u"@%SystemRoot%\\system32\\shell32.dll,-22555")
          .Arguments(u"/page " + number)
          .IconLocation(u"%SystemRoot%\\system32\\imageres.dll");
      link.IconIndex = -70;
      AddUsualBlocks(link);
      link.TextBlock(0xA0000001, u"%SystemRoot%\\system32\\tool.exe",
                     u"%SystemRoot%\\system32\\tool" + number + u".exe");
      break;
    case 2:  // an uninstaller's, with arguments
      link.IDList(MakeIDList(folder + u"unins000.exe")).LinkInfo(local).Arguments(u"/remove /product=" + number);
      link.WorkingDir(folder).TextBlock(0xA0000007, u"%ProgramFiles%\\a.ico", u"%ProgramFiles%\\p" + number + u".ico");
      AddUsualBlocks(link);
      break;
    case 3:  // an advertised one of the Windows Installer
      link.IDList(MakeIDList(u"C:\\Windows\\Installer\\{90120000-0030-0000-0000-0000000FF1CE}\\wordicon.exe"));
      link.IconLocation(u"C:\\Windows\\Installer\\{90120000-0030-0000-0000-0000000FF1CE}\\wordicon.exe");
      link.TextBlock(0xA0000006, u"w_1^VN!!!!!!!!!MKKSk", u"w_1^VN!!!!!!!!!MKKSk" + number);
      AddUsualBlocks(link);
      break;
    case 4:  // a target on the network
      link
          .LinkInfo(MakeLinkInfo(
              {.Flags = 2, .Share = MakeShare(u"\\\\FILESERVER\\APPS", u"P:"), .Suffix = u"suite\\start.exe"}))
          .WorkingDir(u"P:\\suite");
      break;
    case 5: {  // a console's
      TBytes console(196, std::byte{0});
      Patch(console, 0, 0x07, 2);
      Patch(console, 4, 80, 2);
      PutText(console, u"", true);
      console.resize(196);
      link.IDList(MakeIDList(u"C:\\Windows\\System32\\cmd.exe")).LinkInfo(local).Arguments(u"/k vars.bat " + number);
      link.Block(0xA0000002, console).Block(0xA0000004, TBytes(4, std::byte{1}));
      AddUsualBlocks(link);
      break;
    }
    case 6:  // an old one without Unicode
      link.Flags &= ~TLinkBuilder::Unicode;
      link.IDList(MakeIDList(path)).LinkInfo(local).WorkingDir(folder).Arguments(u"-old").Tail.clear();
      break;
    default:  // a document of somebody who writes in another script
      link.IDList(MakeIDList(u"C:\\Users\\Mara\\\u0414\u043E\u043A\u0443\u043C\u0435\u043D\u0442\u044B\\" + number +
                             u".docx"))
          .LinkInfo(MakeLinkInfo({.HeaderSize = 0x24,
                                  .Volume = MakeVolume(u"\u0414\u0438\u0441\u043A", true),
                                  .BasePath = u"C:\\Users\\Mara\\?.docx",
                                  .BasePathUnicode = u"C:\\Users\\Mara\\\u0414.docx",
                                  .SuffixUnicode = {}}));
      AddUsualBlocks(link);
      link.Block(0xA0000009, TBytes(300, std::byte{0x31}));
      break;
  }
  return link.Build();
}

}  // namespace varcolin::testing
