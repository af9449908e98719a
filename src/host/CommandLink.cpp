#include <filesystem>
#include <fstream>

#include "host/Cells.h"
#include "host/Commands.h"
#include "host/HostError.h"
#include "host/Json.h"
#include "host/Library.h"
#include "host/LinkRecord.h"
#include "host/Terminal.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

/// The content of a file of this computer, as far as the library could ever want it.
std::vector<char> ReadLinkFile(const std::string& APath) {
  constexpr std::size_t Most = (5U << 20U) + 1;  // a byte more than the library takes
  const std::filesystem::path path(std::u8string(APath.begin(), APath.end()));
  std::error_code error;
  // opening a pipe or a device might never end
  if (!std::filesystem::is_regular_file(path, error)) throw EHostError("there is no file " + APath);
  std::vector<char> content(
      static_cast<std::size_t>(std::min<std::uintmax_t>(std::filesystem::file_size(path, error), Most)));
  std::ifstream file(path, std::ios::binary);
  if (!file) throw EHostError(APath + " cannot be read");
  file.read(content.data(), static_cast<std::streamsize>(content.size()));
  if (file.bad()) throw EHostError(APath + " cannot be read");
  content.resize(static_cast<std::size_t>(file.gcount()));
  return content;
}

TLinkRecord ReadRecord(const std::string& APath) {
  const std::vector<char> content = ReadLinkFile(APath);
  const TLibrary library(std::nullopt, EMachineUse::None);
  TInterfaceRef<IShellLinkReader> reader;
  library.Manager().QueryInterface(IShellLinkReader::IID, reinterpret_cast<void**>(reader.Receive()));
  if (!reader) throw EHostError("the library does not read link files");
  TOleText error;
  TInterfaceRef<IShellLinkFile> link;
  reader->ReadLink(ToUtf16(APath).c_str(), content.data(), static_cast<std::int64_t>(content.size()), error.Receive(),
                   link.Receive());
  if (!link) throw EHostError(error.View().empty() ? APath + " cannot be read" : ToUtf8(error.View()));
  return ReadLinkRecord(*link);
}

}  // namespace

int RunLink(const TLinkOptions& AOptions) {
  const TLinkRecord link = ReadRecord(AOptions.File);
  WriteOutput(AOptions.Json ? FormatLinkJson(link) : FormatLink(link, OutputWidth()));
  return ExitOk;
}

}  // namespace varcolin::host
