#include "host/OutputFile.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

#include "host/Cells.h"
#include "host/HostError.h"

namespace varcolin::host {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const std::string& APath, const std::error_code& AError) {
  std::string text = Printable(APath) + " cannot be written";
  if (AError) text += ": " + AError.message();
  throw EHostError(text);
}

/// Writes and closes; what went wrong.
std::error_code Write(const fs::path& APath, std::string_view AContent) {
  errno = 0;
  std::ofstream file(APath, std::ios::binary | std::ios::trunc);
  if (file) file.write(AContent.data(), static_cast<std::streamsize>(AContent.size()));
  if (file) file.close();
  if (file) return {};
  return {errno != 0 ? errno : EIO, std::generic_category()};
}

/// A name beside the file that nobody can have foreseen.
fs::path PartOf(const fs::path& AFile) {
  std::random_device random;
  return AFile.parent_path() / ("varcolin-" + std::to_string(random()) + std::to_string(random()) + ".part");
}

}  // namespace

void WriteOutputFile(const std::string& APath, std::string_view AContent) {
  fs::path target(std::u8string(APath.begin(), APath.end()));
  std::error_code error;
  const fs::file_status status = fs::status(target, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    if (fs::is_directory(status)) Fail(APath, std::make_error_code(std::errc::is_a_directory));
    error = Write(target, AContent);
    if (error) Fail(APath, error);
    return;
  }
  // a link stays a link: what it leads to is written anew
  if (fs::exists(status)) {
    target = fs::canonical(target, error);
    if (error) Fail(APath, error);
  }
  const fs::path part = PartOf(target);
  error = Write(part, AContent);
  if (!error) fs::rename(part, target, error);
  if (!error) return;
  std::error_code ignored;
  fs::remove(part, ignored);
  Fail(APath, error);
}

}  // namespace varcolin::host
