// Files of real machines, where a folder with some lies beside the project or is named by the environment variable
// VARCOLIN_TEST_DATA. A source that includes this is compiled with SHARED_DATA, the folder beside the project.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace varcolin::testing {

/// The files with an extension (all of them for an empty one) in one of the folders, and below it, in order; none where
/// there is no such folder.
[[nodiscard]] inline std::vector<std::filesystem::path> RealFiles(const char* AFolder,
                                                                  std::string_view AExtension = {}) {
  const char* const named = std::getenv("VARCOLIN_TEST_DATA");
  const std::filesystem::path folder = std::filesystem::path(named != nullptr ? named : SHARED_DATA) / AFolder;
  std::vector<std::filesystem::path> files;
  if (!std::filesystem::is_directory(folder)) return files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    if (AExtension.empty() || entry.path().extension() == AExtension) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

[[nodiscard]] inline std::string ReadRealFile(const std::filesystem::path& APath) {
  std::ifstream stream(APath, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace varcolin::testing
