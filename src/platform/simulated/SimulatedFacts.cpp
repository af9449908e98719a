#include "platform/simulated/SimulatedFacts.h"

#include "support/uDateTime.h"

namespace varcolin {

TSimulatedFacts::TSimulatedFacts() : Now(SystemTimeToFileTime({2012, 8, 4, 9, 10, 11, 12, 0})) {
  Version.Major = 6;
  Version.Minor = 1;
  Version.Build = 7601;
  Version.ServicePackText = u"Service Pack 1";
  Version.ServicePackMajor = 1;
}

TEnvironment EnvironmentOf(const TSimulatedFacts& AFacts) {
  TEnvironment environment;
  const bool is64 = AFacts.Is64Bit();
  const std::u16string own = is64 && AFacts.IsWow64 ? u"C:\\Program Files (x86)" : u"C:\\Program Files";
  const auto set = [&](std::u16string_view AName, std::u16string_view AValue) {
    environment.insert_or_assign(std::u16string(AName), std::u16string(AValue));
  };
  set(u"SystemDrive", u"C:");
  set(u"SystemRoot", u"C:\\Windows");
  set(u"windir", u"C:\\Windows");
  set(u"COMSPEC", u"C:\\Windows\\system32\\cmd.exe");
  set(u"ProgramFiles", own);
  set(u"CommonProgramFiles", own + u"\\Common Files");
  if (is64) {
    set(u"ProgramFiles(x86)", u"C:\\Program Files (x86)");
    set(u"CommonProgramFiles(x86)", u"C:\\Program Files (x86)\\Common Files");
    // processes of systems before Windows 7 do not get the names of the 64-bit folders
    if (AFacts.Version.Major > 6 || (AFacts.Version.Major == 6 && AFacts.Version.Minor >= 1)) {
      set(u"ProgramW6432", u"C:\\Program Files");
      set(u"CommonProgramW6432", u"C:\\Program Files\\Common Files");
    }
  }
  set(u"OS", u"Windows_NT");
  set(u"NUMBER_OF_PROCESSORS", u"2");
  set(u"PROCESSOR_ARCHITECTURE",
      AFacts.IsWow64 || !is64 ? u"x86" : (AFacts.NativeArchitecture == Architecture::Itanium ? u"IA64" : u"AMD64"));
  if (is64 && AFacts.IsWow64) {
    set(u"PROCESSOR_ARCHITEW6432", AFacts.NativeArchitecture == Architecture::Itanium ? u"IA64" : u"AMD64");
  }
  set(u"PATH", u"C:\\Windows\\system32;C:\\Windows;C:\\Windows\\System32\\Wbem");
  set(u"PATHEXT", u".COM;.EXE;.BAT;.CMD;.VBS;.VBE;.JS;.JSE;.WSF;.WSH;.MSC");
  set(u"COMPUTERNAME", u"PC");
  set(u"USERDOMAIN", u"PC");
  set(u"USERNAME", AFacts.UserName);
  if (AFacts.IsVista()) {
    const std::u16string profile = u"C:\\Users\\" + AFacts.UserName;
    set(u"USERPROFILE", profile);
    set(u"APPDATA", profile + u"\\AppData\\Roaming");
    set(u"LOCALAPPDATA", profile + u"\\AppData\\Local");
    set(u"ALLUSERSPROFILE", u"C:\\ProgramData");
    set(u"ProgramData", u"C:\\ProgramData");
    set(u"PUBLIC", u"C:\\Users\\Public");
    set(u"TEMP", profile + u"\\AppData\\Local\\Temp");
    set(u"TMP", profile + u"\\AppData\\Local\\Temp");
    set(u"HOMEPATH", u"\\Users\\" + AFacts.UserName);
  } else {
    const std::u16string profile = u"C:\\Documents and Settings\\" + AFacts.UserName;
    set(u"USERPROFILE", profile);
    set(u"APPDATA", profile + u"\\Application Data");
    set(u"ALLUSERSPROFILE", u"C:\\Documents and Settings\\All Users");
    set(u"TEMP", profile + u"\\Local Settings\\Temp");
    set(u"TMP", profile + u"\\Local Settings\\Temp");
    set(u"HOMEPATH", u"\\Documents and Settings\\" + AFacts.UserName);
  }
  set(u"HOMEDRIVE", u"C:");
  for (const auto& [name, value] : AFacts.Environment) {
    if (value.empty()) {
      environment.erase(name);
    } else {
      environment.insert_or_assign(name, value);
    }
  }
  return environment;
}

std::u16string_view VariableOf(const TEnvironment& AEnvironment, std::u16string_view AName) {
  const auto found = AEnvironment.find(AName);
  return found == AEnvironment.end() ? std::u16string_view{} : std::u16string_view(found->second);
}

}  // namespace varcolin
