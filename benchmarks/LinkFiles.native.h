// Many link files on the disk of this computer, and readers of them.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"

namespace varcolin::benchmarks {

/// Link files of the kinds that real machines hold, in a folder that goes with the object.
class TLinkFiles {
 public:
  struct TFile {
    std::string Name;  // in the folder
    std::u16string Path;
  };

  explicit TLinkFiles(std::size_t ACount);
  TLinkFiles(const TLinkFiles&) = delete;
  TLinkFiles& operator=(const TLinkFiles&) = delete;
  ~TLinkFiles();

  [[nodiscard]] const std::filesystem::path& Folder() const noexcept { return FFolder; }
  [[nodiscard]] std::span<const TFile> Files() const noexcept { return FFiles; }

 private:
  std::filesystem::path FFolder;
  std::vector<TFile> FFiles;
};

/// Opens, reads and closes link files, each at one go, and leaves no trace of it in them.
class TLinkReading {
 public:
  explicit TLinkReading(const TLinkFiles& AFiles);
  TLinkReading(const TLinkReading&) = delete;
  TLinkReading& operator=(const TLinkReading&) = delete;
  ~TLinkReading();

  /// The seconds for ACount files from number AFirst on.
  [[nodiscard]] double Seconds(std::size_t AFirst, std::size_t ACount);
  /// The bytes of some files, until the next ones are read.
  [[nodiscard]] std::span<const std::span<const std::byte>> Read(std::span<const TLinkFiles::TFile> AFiles);

 private:
  const TLinkFiles& FFiles;
  int FFolder;
  std::vector<std::byte> FBuffer;
  std::vector<std::span<const std::byte>> FRead;  // views of the buffer
};

/// Reads link files, and takes from each what the scanner of program folders and a launcher want: path, arguments,
/// working directory and icon. The parser is loaded over a simulated machine while the object lives; one at a time.
class TLinkParsing {
 public:
  explicit TLinkParsing(const TLinkFiles& AFiles);
  TLinkParsing(const TLinkParsing&) = delete;
  TLinkParsing& operator=(const TLinkParsing&) = delete;
  ~TLinkParsing();

  /// The seconds for ACount files from number AFirst on, reading them included.
  [[nodiscard]] double Seconds(std::size_t AFirst, std::size_t ACount);

 private:
  const TLinkFiles& FFiles;
  TLinkReading FReading;
  TSimulatedMachine FMachine;
};

/// Has liblnk do the same through its Python binding, in an interpreter that lives as long as the object.
class TLiblnkReading {
 public:
  /// Raises TSkipped where the binding is not installed.
  explicit TLiblnkReading(const TLinkFiles& AFiles);
  TLiblnkReading(const TLiblnkReading&) = delete;
  TLiblnkReading& operator=(const TLiblnkReading&) = delete;
  ~TLiblnkReading();

  /// The same seconds by the interpreter's own clock.
  [[nodiscard]] double Seconds(std::size_t AFirst, std::size_t ACount);

 private:
  struct TCloseStream {
    void operator()(std::FILE* AStream) const noexcept { std::fclose(AStream); }
  };
  using TStream = std::unique_ptr<std::FILE, TCloseStream>;

  pid_t FProcess = -1;
  TStream FRequests;
  TStream FAnswers;
};

}  // namespace varcolin::benchmarks
