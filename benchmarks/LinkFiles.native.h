// Many link files on the disk of this computer, and readers of them.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace varcolin::benchmarks {

/// Link files of the kinds that real machines hold, in a folder that goes with the object. The parser runs over a
/// simulated machine and is loaded for each measurement. One at a time.
class TLinkFiles {
 public:
  explicit TLinkFiles(std::size_t ACount);
  TLinkFiles(const TLinkFiles&) = delete;
  TLinkFiles& operator=(const TLinkFiles&) = delete;
  ~TLinkFiles();

  /// The seconds that it takes to open, read and close all files.
  [[nodiscard]] double ReadSeconds() const;
  /// The same, and to take from each link what the scanner of program folders and a launcher want: path, arguments,
  /// working directory and icon.
  [[nodiscard]] double ParseSeconds() const;
  /// The seconds that liblnk takes for the same through its Python binding, in an interpreter that has done it once
  /// before. Raises TSkipped where that is not installed.
  [[nodiscard]] double LiblnkSeconds() const;

 private:
  struct TFile {
    std::string Name;  // in the folder
    std::u16string Path;
  };
  class TReader;

  std::filesystem::path FFolder;
  std::vector<TFile> FFiles;
};

}  // namespace varcolin::benchmarks
