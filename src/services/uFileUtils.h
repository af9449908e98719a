// Real file names from the paths and command lines that the registry holds.
#pragma once

#include <string>
#include <string_view>

namespace varcolin {

class IFiles;
class ISystemFacts;
class IRegistry;

/// Class operations only, any thread. Nothing here raises but for what the host helper raises.
class FileUtils {
 public:
  static void Load(IFiles& AFiles, ISystemFacts& ASystem, IRegistry& ARegistry);
  static void Unload() noexcept;

  /// Fixed folders, each with a trailing backslash, computed once.
  [[nodiscard]] static const std::u16string& WinSystemX16();
  [[nodiscard]] static const std::u16string& WinSystemX32();
  [[nodiscard]] static const std::u16string& WinSystemX64();
  [[nodiscard]] static const std::u16string& ProgramFilesX32();
  [[nodiscard]] static const std::u16string& ProgramFilesX64();

  /// A usable file name: quotes removed, environment references expanded, normalised.
  [[nodiscard]] static std::u16string PrepareFileName(std::u16string_view APath);
  /// The same for a folder, with a trailing backslash when it is not empty.
  [[nodiscard]] static std::u16string PreparePathName(std::u16string_view APath);
  /// The program file of a command line.
  [[nodiscard]] static std::u16string PrepareCmdFileName(std::u16string_view APath);
  /// The name under which a file (folder) exists, in this or the other 32/64-bit view; unchanged when it does not.
  [[nodiscard]] static std::u16string CheckFileX64(std::u16string_view AFile);
  [[nodiscard]] static std::u16string CheckFolderX64(std::u16string_view ADir);
  /// Finds an executable by its bare name: search folders, App Paths, shared DLLs. APath is empty when it fails.
  [[nodiscard]] static bool SearchPath(std::u16string_view AFileName, std::u16string& APath);
  /// Splits a command line into program and parameters.
  static void ParseCommand(std::u16string_view ACommand, std::u16string& AFileName, std::u16string& AParams);
  /// A command line of program and parameters; the program is quoted when it has a space.
  [[nodiscard]] static std::u16string MakeCommand(std::u16string_view AFileName, std::u16string_view AParams);

  /// Whether a file (not a folder), or a folder, exists as this process sees it.
  [[nodiscard]] static bool FileExists(std::u16string_view APath);
  [[nodiscard]] static bool FolderExists(std::u16string_view APath);
};

}  // namespace varcolin
