// The built host, run as a person runs it. VARCOLIN_EXE names it; every source that includes this is given it.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace varcolin::testing {

using TArguments = std::vector<std::string>;

/// A folder that goes with the test.
class TTemporaryFolder {
 public:
  TTemporaryFolder() {
    std::string name = std::filesystem::temp_directory_path() / "varcolin-host-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::filesystem::filesystem_error("mkdtemp", std::error_code());
    FPath = name;
  }
  TTemporaryFolder(const TTemporaryFolder&) = delete;
  TTemporaryFolder& operator=(const TTemporaryFolder&) = delete;
  ~TTemporaryFolder() { std::filesystem::remove_all(FPath); }

  [[nodiscard]] std::string Name() const { return FPath; }
  void Put(const std::string& AFile, const std::string& AText) const {
    const std::filesystem::path path = FPath / AFile;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << AText;
  }

 private:
  std::filesystem::path FPath;
};

inline std::string ReadAll(const std::filesystem::path& APath) {
  std::ifstream file(APath, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct TOutcome {
  int ExitCode = -1;
  std::string Output;
  std::string Error;
};

inline std::string Quoted(const std::string& AText) {
  std::string result = "'";
  for (const char character : AText) result += character == '\'' ? "'\\''" : std::string(1, character);
  return result + '\'';
}

/// Runs a line of shell in which $HOST is the program; its error stream is kept apart.
inline TOutcome RunShell(const std::string& ALine) {
  const TTemporaryFolder folder;
  const std::string output = folder.Name() + "/output";
  const std::string error = folder.Name() + "/error";
  const std::string script = "HOST=" + Quoted(VARCOLIN_EXE) + "; set -o pipefail; { " + ALine + "\n} </dev/null >" +
                             Quoted(output) + " 2>" + Quoted(error);
  const int status = std::system(("bash -c " + Quoted(script)).c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadAll(output), ReadAll(error)};
}

inline TOutcome RunHost(const TArguments& AArguments) {
  std::string line = "\"$HOST\"";
  for (const std::string& argument : AArguments) line += ' ' + Quoted(argument);
  return RunShell(line);
}

}  // namespace varcolin::testing
