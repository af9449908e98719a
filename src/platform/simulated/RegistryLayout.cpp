#include "platform/simulated/RegistryLayout.h"

namespace varcolin::RegistryLayout {

std::span<const std::u16string_view> SharedKeys() noexcept {
  static constexpr std::u16string_view Keys[] = {
      u"Clients",
      u"Microsoft\\COM3",
      u"Microsoft\\Cryptography\\Calais\\Current",
      u"Microsoft\\Cryptography\\Calais\\Readers",
      u"Microsoft\\Cryptography\\Services",
      u"Microsoft\\CTF\\SystemShared",
      u"Microsoft\\CTF\\TIP",
      u"Microsoft\\DFS",
      u"Microsoft\\Driver Signing",
      u"Microsoft\\EnterpriseCertificates",
      u"Microsoft\\EventSystem",
      u"Microsoft\\MSMQ",
      u"Microsoft\\Non-Driver Signing",
      u"Microsoft\\Notepad\\DefaultFonts",
      u"Microsoft\\OLE",
      u"Microsoft\\RAS",
      u"Microsoft\\RPC",
      u"Microsoft\\Shared Tools\\MSInfo",
      u"Microsoft\\SystemCertificates",
      u"Microsoft\\TermServLicensing",
      u"Microsoft\\Transaction Server",
      u"Microsoft\\Windows\\CurrentVersion\\App Paths",
      u"Microsoft\\Windows\\CurrentVersion\\Control Panel\\Cursors\\Schemes",
      u"Microsoft\\Windows\\CurrentVersion\\Explorer\\AutoplayHandlers",
      u"Microsoft\\Windows\\CurrentVersion\\Explorer\\DriveIcons",
      u"Microsoft\\Windows\\CurrentVersion\\Explorer\\KindMap",
      u"Microsoft\\Windows\\CurrentVersion\\Group Policy",
      u"Microsoft\\Windows\\CurrentVersion\\Policies",
      u"Microsoft\\Windows\\CurrentVersion\\PreviewHandlers",
      u"Microsoft\\Windows\\CurrentVersion\\Setup",
      u"Microsoft\\Windows\\CurrentVersion\\Telephony\\Locations",
      u"Microsoft\\Windows NT\\CurrentVersion\\Console",
      u"Microsoft\\Windows NT\\CurrentVersion\\FontDpi",
      u"Microsoft\\Windows NT\\CurrentVersion\\FontLink",
      u"Microsoft\\Windows NT\\CurrentVersion\\FontMapper",
      u"Microsoft\\Windows NT\\CurrentVersion\\Fonts",
      u"Microsoft\\Windows NT\\CurrentVersion\\FontSubstitutes",
      u"Microsoft\\Windows NT\\CurrentVersion\\Gre_Initialize",
      u"Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options",
      u"Microsoft\\Windows NT\\CurrentVersion\\LanguagePack",
      u"Microsoft\\Windows NT\\CurrentVersion\\NetworkCards",
      u"Microsoft\\Windows NT\\CurrentVersion\\Perflib",
      u"Microsoft\\Windows NT\\CurrentVersion\\Ports",
      u"Microsoft\\Windows NT\\CurrentVersion\\Print",
      u"Microsoft\\Windows NT\\CurrentVersion\\ProfileList",
      u"Microsoft\\Windows NT\\CurrentVersion\\Time Zones",
      u"Policies",
      u"RegisteredApplications",
  };
  return Keys;
}

std::span<const std::u16string_view> RedirectedClasses() noexcept {
  static constexpr std::u16string_view Keys[] = {u"CLSID", u"DirectShow", u"Interface", u"Media Type",
                                                 u"MediaFoundation"};
  return Keys;
}

std::span<const std::u16string_view> LinkedClasses() noexcept {
  static constexpr std::u16string_view Keys[] = {u"AppID", u"Protocols", u"TypeLib"};
  return Keys;
}

}  // namespace varcolin::RegistryLayout
