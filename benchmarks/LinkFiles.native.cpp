#include "benchmarks/LinkFiles.native.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <stdexcept>

#include "benchmarks/Figures.h"
#include "common/LinkKinds.h"
#include "support/uShellLinkInfo.h"
#include "support/uText.h"

namespace varcolin::benchmarks {

namespace {

/// Links are read a folder's worth at a time and parsed then: the system's code and the parser's are found warm by all
/// files but the first.
constexpr std::size_t FilesOfGroup = 64;
constexpr std::size_t LargestGroup = 1'048'576;  // in bytes

template <class TAction>
void ForGroups(std::span<const TLinkFiles::TFile> AFiles, TAction AAction) {
  while (!AFiles.empty()) {
    const auto group = AFiles.first(std::min(FilesOfGroup, AFiles.size()));
    AAction(group);
    AFiles = AFiles.subspan(group.size());
  }
}

}  // namespace

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

TLinkReading::TLinkReading(const TLinkFiles& AFiles)
    : FFiles(AFiles),
      FFolder(::open(AFiles.Folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      FBuffer(LargestGroup) {
  if (FFolder < 0) throw std::runtime_error("cannot open " + AFiles.Folder().string());
}

TLinkReading::~TLinkReading() { ::close(FFolder); }

std::span<const std::span<const std::byte>> TLinkReading::Read(std::span<const TLinkFiles::TFile> AFiles) {
  std::span<std::byte> free = FBuffer;
  FRead.clear();
  for (const auto& [name, path] : AFiles) {
    const int file = ::openat(FFolder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NOATIME);
    const ssize_t size = ::read(file, free.data(), free.size());
    ::close(file);
    if (size <= 0 || static_cast<std::size_t>(size) == free.size()) throw std::runtime_error("cannot read " + name);
    FRead.push_back(free.first(static_cast<std::size_t>(size)));
    free = free.subspan(FRead.back().size());
  }
  return FRead;
}

double TLinkReading::Seconds(std::size_t AFirst, std::size_t ACount) {
  std::size_t bytes = 0;
  const double seconds = SecondsOf([&] {
    ForGroups(FFiles.Files().subspan(AFirst, ACount), [&](std::span<const TLinkFiles::TFile> AGroup) {
      for (const auto data : Read(AGroup)) bytes += data.size();
    });
  });
  if (bytes == 0) throw std::runtime_error("the links are empty");
  return seconds;
}

TLinkParsing::TLinkParsing(const TLinkFiles& AFiles) : FFiles(AFiles), FReading(AFiles) {
  TShellLinkInfo::Load(FMachine.Files(), FMachine.Shell(), FMachine.System(),
                       [](std::u16string_view AText) { return std::u16string(AText); });
}

TLinkParsing::~TLinkParsing() { TShellLinkInfo::Unload(); }

double TLinkParsing::Seconds(std::size_t AFirst, std::size_t ACount) {
  std::size_t empty = 0;
  std::size_t units = 0;
  const double seconds = SecondsOf([&] {
    ForGroups(FFiles.Files().subspan(AFirst, ACount), [&](std::span<const TLinkFiles::TFile> AGroup) {
      const auto read = FReading.Read(AGroup);
      for (std::size_t index = 0; index < read.size(); ++index) {
        const TShellLinkInfo link(AGroup[index].Path, read[index]);
        if (link.PathName().empty()) ++empty;
        units += link.Arguments().size() + link.WorkingDirectory().size() + link.IconLocation().size() +
                 static_cast<std::size_t>(link.IconIndex() != 0);
      }
    });
  });
  if (empty != 0 || units == 0) throw std::runtime_error(std::to_string(empty) + " links without a path were read");
  return seconds;
}

TLiblnkReading::TLiblnkReading(const TLinkFiles& AFiles) {
  std::array<int, 2> requests{};
  std::array<int, 2> answers{};
  if (::pipe2(requests.data(), O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
  FRequests.reset(::fdopen(requests[1], "w"));
  TStream requestsEnd(::fdopen(requests[0], "r"));
  if (::pipe2(answers.data(), O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
  FAnswers.reset(::fdopen(answers[0], "r"));
  TStream answersEnd(::fdopen(answers[1], "w"));

  std::string program = "/usr/bin/python3";
  std::string script = READ_LINKS_SCRIPT;
  std::string folder = AFiles.Folder().string();
  const std::array<char*, 4> arguments = {program.data(), script.data(), folder.data(), nullptr};
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, requests[0], STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, answers[1], STDOUT_FILENO);
  const int error = ::posix_spawn(&FProcess, program.c_str(), &actions, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("cannot start python3");

  // the answers end with the interpreter only when nobody else has its end open
  requestsEnd.reset();
  answersEnd.reset();
  std::size_t count = 0;
  if (std::fscanf(FAnswers.get(), "%zu", &count) == 1) return;
  constexpr int MissingBinding = 3;
  int status = 0;
  FRequests.reset();  // an interpreter that still runs ends with its input
  ::waitpid(FProcess, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == MissingBinding) throw TSkipped("python3-liblnk is not installed");
  throw std::runtime_error("python3 cannot list the links");
}

TLiblnkReading::~TLiblnkReading() {
  FRequests.reset();
  ::waitpid(FProcess, nullptr, 0);
}

double TLiblnkReading::Seconds(std::size_t AFirst, std::size_t ACount) {
  std::fprintf(FRequests.get(), "%zu %zu\n", AFirst, ACount);
  std::fflush(FRequests.get());
  double seconds = 0;
  if (std::fscanf(FAnswers.get(), "%lf", &seconds) != 1) throw std::runtime_error("liblnk does not read the links");
  return seconds;
}

}  // namespace varcolin::benchmarks
