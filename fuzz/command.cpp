// Command lines and paths out of the registry, on a machine with a few programs.
#include "fuzz/Fuzz.h"
#include "fuzz/LoadedLibrary.h"
#include "services/uFileUtils.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* AData, std::size_t ASize) {
  using namespace varcolin;
  static const fuzz::TLoadedLibrary library{u"C:\\Program Files (x86)\\Tool\\unins000.exe",
                                            u"C:\\Program Files\\A B\\c d.exe", u"C:\\Windows\\tool.exe"};
  const std::u16string text = fuzz::AsText(fuzz::AsInput(AData, ASize));
  std::u16string file;
  std::u16string parameters;
  FileUtils::ParseCommand(text, file, parameters);
  fuzz::Check(file.size() <= text.size() && parameters.size() <= text.size(), "parts are not longer than the whole");
  fuzz::Check(Trim(parameters) == parameters, "parameters have no blanks around them");
  const std::u16string command = FileUtils::MakeCommand(file, parameters);
  if (file.find(u'"') == std::u16string::npos && !file.empty() && file.find(u' ') != std::u16string::npos) {
    std::u16string again;
    std::u16string rest;
    FileUtils::ParseCommand(command, again, rest);
    fuzz::Check(again == file, "the program of a command line that was made is that program");
  }
  for (const std::u16string& path :
       {FileUtils::PrepareFileName(text), FileUtils::PreparePathName(text), FileUtils::PrepareCmdFileName(text)}) {
    static_cast<void>(FileUtils::CheckFileX64(path));
    static_cast<void>(FileUtils::CheckFolderX64(path));
    static_cast<void>(FileUtils::SearchPath(path, file));
  }
  return 0;
}
