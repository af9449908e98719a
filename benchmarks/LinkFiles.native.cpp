#include "benchmarks/LinkFiles.native.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <span>
#include <stdexcept>

#include "benchmarks/Figures.h"
#include "common/LinkKinds.h"
#include "platform/simulated/SimulatedMachine.h"
#include "support/uShellLinkInfo.h"
#include "support/uText.h"

namespace varcolin::benchmarks {

namespace {

/// The parser over a machine of its own, while the object lives.
class TLoadedParser {
 public:
  TLoadedParser() {
    TShellLinkInfo::Load(FMachine.Files(), FMachine.Shell(), FMachine.System(),
                         [](std::u16string_view AText) { return std::u16string(AText); });
  }
  TLoadedParser(const TLoadedParser&) = delete;
  TLoadedParser& operator=(const TLoadedParser&) = delete;
  ~TLoadedParser() { TShellLinkInfo::Unload(); }

 private:
  TSimulatedMachine FMachine;
};

}  // namespace

/// Reads files of one folder, each at one go, and leaves no trace of it in them.
class TLinkFiles::TReader {
 public:
  explicit TReader(const std::filesystem::path& AFolder)
      : FFolder(::open(AFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), FBuffer(65'536) {
    if (FFolder < 0) throw std::runtime_error("cannot open " + AFolder.string());
  }
  TReader(const TReader&) = delete;
  TReader& operator=(const TReader&) = delete;
  ~TReader() { ::close(FFolder); }

  /// The bytes of a file, until the next one is read.
  [[nodiscard]] std::span<const std::byte> Read(const std::string& AName) {
    const int file = ::openat(FFolder, AName.c_str(), O_RDONLY | O_CLOEXEC | O_NOATIME);
    const ssize_t size = ::read(file, FBuffer.data(), FBuffer.size());
    ::close(file);
    if (size <= 0 || static_cast<std::size_t>(size) == FBuffer.size()) throw std::runtime_error("cannot read " + AName);
    return std::span(FBuffer).first(static_cast<std::size_t>(size));
  }

 private:
  int FFolder;
  std::vector<std::byte> FBuffer;
};

TLinkFiles::TLinkFiles(std::size_t ACount)
    : FFolder(std::filesystem::temp_directory_path() / ("varcolin-links-" + std::to_string(::getpid()))) {
  std::filesystem::create_directory(FFolder);
  FFiles.reserve(ACount);
  for (std::size_t number = 0; number < ACount; ++number) {
    const std::string name = std::to_string(number) + ".lnk";
    const testing::TBytes data = testing::MakeRealLink(number);
    std::ofstream file(FFolder / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + name);
    FFiles.push_back({name, FromUtf8((FFolder / name).string())});
  }
}

TLinkFiles::~TLinkFiles() {
  std::error_code error;
  std::filesystem::remove_all(FFolder, error);
}

double TLinkFiles::ReadSeconds() const {
  TReader reader(FFolder);
  std::size_t bytes = 0;
  const double seconds = SecondsOf([&] {
    for (const TFile& file : FFiles) bytes += reader.Read(file.Name).size();
  });
  if (bytes == 0) throw std::runtime_error("the links are empty");
  return seconds;
}

double TLinkFiles::ParseSeconds() const {
  const TLoadedParser parser;
  TReader reader(FFolder);
  std::size_t empty = 0;
  std::size_t units = 0;
  const double seconds = SecondsOf([&] {
    for (const TFile& file : FFiles) {
      const std::span<const std::byte> data = reader.Read(file.Name);
      const TShellLinkInfo link(file.Path, data);
      if (link.PathName().empty()) ++empty;
      units += link.Arguments().size() + link.WorkingDirectory().size() + link.IconLocation().size() +
               static_cast<std::size_t>(link.IconIndex() != 0);
    }
  });
  if (empty != 0 || units == 0) throw std::runtime_error(std::to_string(empty) + " links without a path were read");
  return seconds;
}

double TLinkFiles::LiblnkSeconds() const {
  constexpr int MissingBinding = 3;
  constexpr int Rounds = 2;  // the first of each new interpreter does not count
  const std::string command =
      "/usr/bin/python3 '" READ_LINKS_SCRIPT "' '" + FFolder.string() + "' " + std::to_string(Rounds);
  FILE* const pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot start python3");
  std::vector<double> seconds;
  for (double round = 0; std::fscanf(pipe, "%lf", &round) == 1;) seconds.push_back(round);
  const int status = ::pclose(pipe);
  if (WIFEXITED(status) && WEXITSTATUS(status) == MissingBinding) throw TSkipped("python3-liblnk is not installed");
  if (status != 0 || seconds.size() != Rounds) throw std::runtime_error("liblnk does not read the links");
  return seconds.back();
}

}  // namespace varcolin::benchmarks
