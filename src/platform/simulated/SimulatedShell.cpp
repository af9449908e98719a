#include "platform/simulated/SimulatedShell.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "support/uGuid.h"
#include "support/uPaths.h"

namespace varcolin {
namespace {

// A special folder: a variable of the environment and what follows it. A null variable: there is no such folder.
struct TPlace {
  const char16_t* Variable;
  std::u16string_view Tail;
};
struct TSpecialFolder {
  std::int32_t Csidl;
  TPlace Vista;     // Windows Vista and later
  TPlace BeforeIt;  // Windows 2000 to Server 2003
};

constexpr const char16_t* Profile = u"USERPROFILE";
constexpr const char16_t* Roaming = u"APPDATA";
constexpr const char16_t* Local = u"LOCALAPPDATA";
constexpr const char16_t* Common = u"ALLUSERSPROFILE";
constexpr const char16_t* Public = u"PUBLIC";
constexpr const char16_t* Root = u"SystemRoot";

constexpr TSpecialFolder Folders[] = {
    {0, {Profile, u"\\Desktop"}, {Profile, u"\\Desktop"}},
    {2, {Roaming, u"\\Microsoft\\Windows\\Start Menu\\Programs"}, {Profile, u"\\Start Menu\\Programs"}},
    {5, {Profile, u"\\Documents"}, {Profile, u"\\My Documents"}},
    {6, {Profile, u"\\Favorites"}, {Profile, u"\\Favorites"}},
    {7,
     {Roaming, u"\\Microsoft\\Windows\\Start Menu\\Programs\\Startup"},
     {Profile, u"\\Start Menu\\Programs\\Startup"}},
    {8, {Roaming, u"\\Microsoft\\Windows\\Recent"}, {Profile, u"\\Recent"}},
    {9, {Roaming, u"\\Microsoft\\Windows\\SendTo"}, {Profile, u"\\SendTo"}},
    {11, {Roaming, u"\\Microsoft\\Windows\\Start Menu"}, {Profile, u"\\Start Menu"}},
    {13, {Profile, u"\\Music"}, {Profile, u"\\My Documents\\My Music"}},
    {14, {Profile, u"\\Videos"}, {Profile, u"\\My Documents\\My Videos"}},
    {16, {Profile, u"\\Desktop"}, {Profile, u"\\Desktop"}},
    {20, {Root, u"\\Fonts"}, {Root, u"\\Fonts"}},
    {22, {Common, u"\\Microsoft\\Windows\\Start Menu"}, {Common, u"\\Start Menu"}},
    {23, {Common, u"\\Microsoft\\Windows\\Start Menu\\Programs"}, {Common, u"\\Start Menu\\Programs"}},
    {24,
     {Common, u"\\Microsoft\\Windows\\Start Menu\\Programs\\Startup"},
     {Common, u"\\Start Menu\\Programs\\Startup"}},
    {25, {Public, u"\\Desktop"}, {Common, u"\\Desktop"}},
    {26, {Roaming, u""}, {Roaming, u""}},
    {28, {Local, u""}, {Profile, u"\\Local Settings\\Application Data"}},
    {32,
     {Local, u"\\Microsoft\\Windows\\Temporary Internet Files"},
     {Profile, u"\\Local Settings\\Temporary Internet Files"}},
    {33, {Roaming, u"\\Microsoft\\Windows\\Cookies"}, {Profile, u"\\Cookies"}},
    {34, {Local, u"\\Microsoft\\Windows\\History"}, {Profile, u"\\Local Settings\\History"}},
    {35, {Common, u""}, {Common, u"\\Application Data"}},
    {36, {Root, u""}, {Root, u""}},
    {37, {Root, u"\\system32"}, {Root, u"\\system32"}},
    {38, {u"ProgramFiles", u""}, {u"ProgramFiles", u""}},
    {39, {Profile, u"\\Pictures"}, {Profile, u"\\My Documents\\My Pictures"}},
    {40, {Profile, u""}, {Profile, u""}},
    {43, {u"CommonProgramFiles", u""}, {u"CommonProgramFiles", u""}},
    {46, {Public, u"\\Documents"}, {Common, u"\\Documents"}},
};

// Places of the namespace: the computer with its drives, and two that stand for folders.
constexpr TGUID ComputerPlace{0x20D04FE0, 0x3AEA, 0x1069, {0xA2, 0xD8, 0x08, 0x00, 0x2B, 0x30, 0x30, 0x9D}};
constexpr TGUID ProfilePlace{0x59031A47, 0x3F72, 0x44A7, {0x89, 0xC5, 0x55, 0x95, 0xFE, 0x6B, 0x30, 0xEE}};
constexpr TGUID DocumentsPlace{0x450D8FBA, 0xAD25, 0x11D0, {0x98, 0xA8, 0x08, 0x00, 0x36, 0x1B, 0x11, 0x03}};
constexpr std::int32_t Documents = 5;
constexpr std::uintptr_t DesktopFolder = 0x50000;

/// The special folder that a place stands for.
std::optional<std::int32_t> FolderOf(const TShellItem& AItem) noexcept {
  if (AItem.Kind != EShellItem::Guid) return std::nullopt;
  if (AItem.Guid == ProfilePlace) return SpecialFolder::Profile;
  if (AItem.Guid == DocumentsPlace) return Documents;
  return std::nullopt;
}

}  // namespace

TWinError TSimulatedShell::GetDesktopFolder(TShellFolder& AFolder) {
  ++FOpenFolders;
  AFolder = TShellFolder(*this, DesktopFolder);
  return WinError::Success;
}

void TSimulatedShell::CloseValue(TShellFolderTag, std::uintptr_t) noexcept { --FOpenFolders; }

TWinError TSimulatedShell::GetDisplayName(const TShellFolder& AFolder, std::span<const std::byte> AIDList,
                                          std::uint32_t AForm, std::u16string& AName) {
  if (AFolder.Value() != DesktopFolder) return WinError::InvalidHandle;
  const TItemIDList items(AIDList);
  if (!items.IsSound()) return WinError::InvalidParameter;
  if (AForm == DisplayNameForm::ForParsing) return GetParsingName(items, AName);
  return AForm == DisplayNameForm::InFolder ? GetNameInFolder(items, AName) : WinError::NotSupported;
}

TWinError TSimulatedShell::GetParsingName(TItemIDList AItems, std::u16string& AName) {
  constexpr std::size_t UsualLength = 96;
  TWinError error = WinError::Success;
  std::u16string path;
  path.reserve(UsualLength);
  std::optional<TItemIDList> places;  // from the first one on that has no path of its own
  const auto beginAtDesktop = [&] {
    if (path.empty() && error == WinError::Success) error = GetSpecialFolder(SpecialFolder::Desktop, path);
  };
  TShellItem item;
  for (TItemIDList here = AItems; AItems.Next(item); here = AItems) {
    if (item.Kind == EShellItem::Unknown) return WinError::NotSupported;
    const std::optional<std::int32_t> folder = FolderOf(item);
    if (folder || item.Kind == EShellItem::Drive || item.Kind == EShellItem::Network) {
      // an item that has a path of its own makes those in front of it needless
      places.reset();
      path.clear();
      error = folder ? GetSpecialFolder(*folder, path) : WinError::Success;
      item.Name.AppendTo(path);
    } else if (item.Kind == EShellItem::Guid) {
      if (!places) places = here;
    } else if (places) {
      error = WinError::NotSupported;  // what lies there, the simulator does not know
    } else {
      beginAtDesktop();
      if (!path.ends_with(u'\\')) path += u'\\';
      item.Name.AppendTo(path);
    }
  }
  if (places) {
    // a place in a place is named by both
    path.clear();
    while (places->Next(item)) path.append(path.empty() ? u"::" : u"\\::").append(GuidToText(item.Guid));
  } else {
    beginAtDesktop();
  }
  if (error == WinError::Success) AName = std::move(path);
  return error;
}

TWinError TSimulatedShell::GetNameInFolder(TItemIDList AItems, std::u16string& AName) const {
  TShellItem item;
  if (!AItems.Next(item)) {
    AName = u"Desktop";
    return WinError::Success;
  }
  while (AItems.Next(item)) {
  }
  switch (item.Kind) {
    case EShellItem::Guid:
      AName = item.Guid == ComputerPlace ? (FFacts.IsVista() ? u"Computer" : u"My Computer")
                                         : u"::" + GuidToText(item.Guid);
      return WinError::Success;
    case EShellItem::Drive:
      AName = u"Local Disk (" + std::u16string(ExcludeTrailingPathDelimiter(item.Name.Text())) + u")";
      return WinError::Success;
    case EShellItem::Network:
    case EShellItem::File:
      AName = ExtractFileName(ExcludeTrailingPathDelimiter(item.Name.Text()));
      return WinError::Success;
    case EShellItem::Unknown:
      break;
  }
  return WinError::NotSupported;
}

TWinError TSimulatedShell::GetSpecialFolder(std::int32_t ACsidl, std::u16string& APath) {
  constexpr std::int32_t SystemX86 = 41;
  constexpr std::int32_t CommonFilesX86 = 44;
  constexpr std::int32_t Create = 0x8000;  // CSIDL_FLAG_CREATE
  ACsidl &= ~Create;
  TPlace place{nullptr, u""};
  if (ACsidl == SystemX86) {
    place = {Root, FFacts.Is64Bit() ? u"\\SysWOW64" : u"\\system32"};
  } else if (ACsidl == SpecialFolder::ProgramFilesX86 || ACsidl == CommonFilesX86) {
    // 32-bit systems before Windows Vista do not have these
    const bool isCommon = ACsidl == CommonFilesX86;
    if (FFacts.Is64Bit()) {
      place.Variable = isCommon ? u"CommonProgramFiles(x86)" : u"ProgramFiles(x86)";
    } else if (FFacts.IsVista()) {
      place.Variable = isCommon ? u"CommonProgramFiles" : u"ProgramFiles";
    }
  } else if (const auto* const found = std::ranges::find(Folders, ACsidl, &TSpecialFolder::Csidl);
             found != std::end(Folders)) {
    place = FFacts.IsVista() ? found->Vista : found->BeforeIt;
  }
  if (place.Variable == nullptr) return WinError::FileNotFound;
  const std::u16string_view base = VariableOf(FEnvironment, place.Variable);
  if (base.empty()) return WinError::FileNotFound;
  APath = std::u16string(ExcludeTrailingPathDelimiter(base)).append(place.Tail);
  return WinError::Success;
}

TWinError TSimulatedShell::QueryIsOS(std::uint32_t AKind, bool& AAnswer) {
  const TVersionFacts& version = FFacts.Version;
  if (version.Major < 5) return WinError::ProcedureNotFound;
  const auto suite = [&](std::uint16_t ABit) { return (version.SuiteMask & ABit) != 0; };
  const auto metric = [&](std::int32_t AIndex) {
    const auto found = FFacts.Metrics.find(AIndex);
    return found != FFacts.Metrics.end() && found->second != 0;
  };
  constexpr std::uint16_t SmallBusiness = 0x0020;  // VER_SUITE_SMALLBUSINESS_RESTRICTED
  constexpr std::uint16_t Enterprise = 0x0002;
  constexpr std::uint16_t Terminal = 0x0010;
  constexpr std::uint16_t Embedded = 0x0040;
  constexpr std::uint16_t Datacenter = 0x0080;
  constexpr std::uint16_t SingleUser = 0x0100;
  constexpr std::uint16_t Personal = 0x0200;
  constexpr std::uint16_t Blade = 0x0400;
  const bool isServer = version.ProductType != ProductType::Workstation;
  const bool is2000 = version.Major == 5 && version.Minor == 0;
  const bool isXpOrLater = !is2000;
  const bool isPlainServer = isServer && !suite(Enterprise) && !suite(Datacenter) && !suite(Blade);
  switch (AKind) {
    case 1:   // OS_NT
    case 2:   // OS_WIN95ORGREATER
    case 3:   // OS_NT4ORGREATER
    case 5:   // OS_WIN98ORGREATER
    case 7:   // OS_WIN2000ORGREATER
    case 17:  // OS_MEORGREATER
      AAnswer = true;
      break;
    case 8:  // OS_WIN2000PRO
      AAnswer = is2000 && !isServer;
      break;
    case 9:  // OS_WIN2000SERVER
      AAnswer = is2000 && isPlainServer;
      break;
    case 10:  // OS_WIN2000ADVSERVER
      AAnswer = is2000 && isServer && suite(Enterprise) && !suite(Datacenter);
      break;
    case 11:  // OS_WIN2000DATACENTER
      AAnswer = is2000 && isServer && suite(Datacenter);
      break;
    case 12:  // OS_WIN2000TERMINAL
      AAnswer = is2000 && suite(Terminal);
      break;
    case 13:  // OS_EMBEDDED
      AAnswer = suite(Embedded);
      break;
    case 15:  // OS_TERMINALREMOTEADMIN
      AAnswer = suite(Terminal) && suite(SingleUser);
      break;
    case 18:  // OS_XPORGREATER
      AAnswer = isXpOrLater;
      break;
    case 19:  // OS_HOME
      AAnswer = isXpOrLater && !isServer && suite(Personal);
      break;
    case 20:  // OS_PROFESSIONAL
      AAnswer = isXpOrLater && !isServer && !suite(Personal);
      break;
    case 21:  // OS_DATACENTER
      AAnswer = isXpOrLater && isServer && suite(Datacenter);
      break;
    case 22:  // OS_ADVSERVER
      AAnswer = isXpOrLater && isServer && suite(Enterprise) && !suite(Datacenter);
      break;
    case 23:  // OS_SERVER
      AAnswer = isXpOrLater && isPlainServer;
      break;
    case 24:  // OS_TERMINALSERVER
      AAnswer = suite(Terminal) && !suite(SingleUser);
      break;
    case 25:  // OS_PERSONALTERMINALSERVER
      AAnswer = !isServer && suite(SingleUser);
      break;
    case 29:  // OS_ANYSERVER
      AAnswer = isServer;
      break;
    case 30:  // OS_WOW6432
      AAnswer = FFacts.Is64Bit() && FFacts.IsWow64;
      break;
    case 31:  // OS_WEBSERVER
      AAnswer = isServer && suite(Blade);
      break;
    case 32:  // OS_SMALLBUSINESSSERVER
      AAnswer = isServer && suite(SmallBusiness);
      break;
    case 33:  // OS_TABLETPC
      AAnswer = metric(86);
      break;
    case 35:  // OS_MEDIACENTER
      AAnswer = metric(87);
      break;
    default:  // the others, Windows 9x among them, and unknown numbers
      AAnswer = false;
      break;
  }
  return WinError::Success;
}

}  // namespace varcolin
