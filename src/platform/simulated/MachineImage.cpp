#include "platform/simulated/MachineImage.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <system_error>

#include "platform/simulated/RegistryText.h"
#include "platform/simulated/SimulatedMachine.h"
#include "support/uText.h"

namespace varcolin {
namespace {

namespace fs = std::filesystem;

std::string ToName(const fs::path& APath) {
  const std::u8string text = APath.generic_u8string();
  return {reinterpret_cast<const char*>(text.data()), text.size()};
}

fs::path ToPath(std::string_view AName) {
  return {std::u8string(reinterpret_cast<const char8_t*>(AName.data()), AName.size())};
}

[[noreturn]] void FailWith(std::string_view AName, std::u16string_view AMessage, const std::error_code& ACode) {
  throw EImageError(AName, 0, std::u16string(AMessage) + u" (" + FromUtf8(ACode.message()) + u")");
}

bool IsBelow(const fs::path& AFolder, const fs::path& APath) {
  return std::mismatch(AFolder.begin(), AFolder.end(), APath.begin(), APath.end()).first == AFolder.end();
}

bool HasRegExtension(std::string_view APath) {
  constexpr std::string_view Extension = ".reg";
  return APath.size() > Extension.size() &&
         std::ranges::equal(APath.substr(APath.size() - Extension.size()), Extension, [](char AFirst, char ASecond) {
           return (AFirst >= 'A' && AFirst <= 'Z' ? static_cast<char>(AFirst + ('a' - 'A')) : AFirst) == ASecond;
         });
}

void LoadRegistry(const IImageSource& AImage, TSimulatedRegistry& ARegistry) {
  constexpr std::string_view Folder = "registry/";
  std::vector<std::string> names;
  for (TImageEntry& entry : AImage.List("registry")) {
    const bool isDirect = entry.Path.find('/', Folder.size()) == std::string::npos;
    if (!entry.IsFolder && isDirect && HasRegExtension(entry.Path)) names.push_back(std::move(entry.Path));
  }
  std::ranges::sort(names);
  for (const std::string& name : names) {
    std::vector<std::byte> buffer;
    LoadRegistryText(AImage.Read(name, buffer), name, ARegistry);
  }
}

// The path on the machine that "drives/C/Folder/file" stands for.
std::u16string DrivePath(std::string_view APath) {
  constexpr std::string_view Folder = "drives/";
  const std::u16string text = FromUtf8(APath.substr(Folder.size()));
  const std::vector<std::u16string_view> parts = Split(text, u'/');
  const std::u16string drive = UpperCase(parts.front());
  if (drive.size() != 1 || drive[0] < u'A' || drive[0] > u'Z') {
    throw EImageError(APath, 0, u"a folder below \"drives\" must have the letter of a drive as its name");
  }
  std::u16string path = drive + u":";
  for (std::size_t i = 1; i < parts.size(); ++i) {
    if (!IsFileName(parts[i])) throw EImageError(APath, 0, u"Windows allows no such file name");
    path.append(u"\\").append(parts[i]);
  }
  return parts.size() == 1 ? path + u"\\" : path;
}

void LoadDrives(const IImageSource& AImage, TSimulatedFiles& AFiles) {
  std::vector<TImageEntry> entries = AImage.List("drives");
  std::ranges::sort(entries, {}, &TImageEntry::Path);
  std::set<std::u16string, TTextLess> seen;
  for (const TImageEntry& entry : entries) {
    const std::u16string path = DrivePath(entry.Path);
    if (path.size() == 3 && !entry.IsFolder) throw EImageError(entry.Path, 0, u"a drive must be a folder");
    if (!seen.insert(path).second) {
      throw EImageError(entry.Path, 0, u"another name differs only in the case of its letters");
    }
    if (entry.IsFolder) {
      AFiles.AddFolder(path);
    } else if (const fs::path host = AImage.HostPath(entry.Path); !host.empty()) {
      AFiles.AddHostFile(path, host, entry.Size);
    } else {
      std::vector<std::byte> unused;
      AFiles.AddStaticFile(path, AImage.Read(entry.Path, unused));
    }
  }
}

}  // namespace

TFolderImage::TFolderImage(const fs::path& AFolder) {
  std::error_code error;
  FRoot = fs::canonical(AFolder, error);
  if (error) FailWith(ToName(AFolder), u"the machine image cannot be found", error);
  if (!fs::is_directory(FRoot, error)) throw EImageError(ToName(AFolder), 0, u"a machine image must be a folder");
}

bool TFolderImage::IsPlainFile(const fs::path& APath, std::string_view AName) const {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(APath, error);
  if (error && status.type() != fs::file_type::not_found) FailWith(AName, u"the file cannot be looked at", error);
  switch (status.type()) {
    case fs::file_type::not_found:
      return false;
    case fs::file_type::regular:
      return true;
    case fs::file_type::symlink: {
      const fs::path target = fs::canonical(APath, error);
      if (error || !IsBelow(FRoot, target) || !fs::is_regular_file(target, error)) {
        throw EImageError(AName, 0, u"the symbolic link does not lead to a file of the image");
      }
      return true;
    }
    default:
      throw EImageError(AName, 0, u"only files and folders can be part of a machine image");
  }
}

std::vector<TImageEntry> TFolderImage::List(std::string_view AFolder) const {
  std::vector<TImageEntry> entries;
  std::error_code error;
  const fs::path folder = FRoot / ToPath(AFolder);
  const fs::file_status status = fs::symlink_status(folder, error);
  if (status.type() == fs::file_type::not_found) return entries;
  if (status.type() != fs::file_type::directory) throw EImageError(AFolder, 0, u"this must be a folder");
  for (fs::recursive_directory_iterator walk(folder, error), end; walk != end; walk.increment(error)) {
    const fs::path& path = walk->path();
    TImageEntry entry{ToName(path.lexically_relative(FRoot))};
    if (walk->symlink_status().type() == fs::file_type::directory) {
      entry.IsFolder = true;
    } else {
      if (!IsPlainFile(path, entry.Path)) continue;
      entry.Size = fs::file_size(path, error);
      if (error) FailWith(entry.Path, u"the file's size cannot be told", error);
    }
    entries.push_back(std::move(entry));
  }
  if (error) FailWith(AFolder, u"a folder cannot be listed", error);
  return entries;
}

bool TFolderImage::HasFile(std::string_view APath) const { return IsPlainFile(FRoot / ToPath(APath), APath); }

std::span<const std::byte> TFolderImage::Read(std::string_view APath, std::vector<std::byte>& ABuffer) const {
  const fs::path path = FRoot / ToPath(APath);
  std::error_code error;
  const std::uintmax_t size = fs::file_size(path, error);
  if (error) FailWith(APath, u"the file cannot be read", error);
  ABuffer.resize(static_cast<std::size_t>(size));
  std::ifstream stream(path, std::ios::binary);
  stream.read(reinterpret_cast<char*>(ABuffer.data()), static_cast<std::streamsize>(ABuffer.size()));
  if (!stream) throw EImageError(APath, 0, u"the file cannot be read");
  return ABuffer;
}

fs::path TFolderImage::HostPath(std::string_view APath) const { return FRoot / ToPath(APath); }

std::vector<TImageEntry> TEmbeddedImage::List(std::string_view AFolder) const {
  const std::string prefix = std::string(AFolder) + "/";
  std::vector<TImageEntry> entries;
  for (const TEmbeddedFile& file : FFiles) {
    if (std::string_view(file.Path).starts_with(prefix)) entries.push_back({file.Path, false, file.Size});
  }
  return entries;
}

bool TEmbeddedImage::HasFile(std::string_view APath) const { return Find(APath) != nullptr; }

std::span<const std::byte> TEmbeddedImage::Read(std::string_view APath, std::vector<std::byte>&) const {
  const TEmbeddedFile* const file = Find(APath);
  if (file == nullptr) throw EImageError(APath, 0, u"the image has no such file");
  return std::as_bytes(std::span(file->Begin, file->Size));
}

const TEmbeddedFile* TEmbeddedImage::Find(std::string_view APath) const noexcept {
  const auto found =
      std::ranges::find(FFiles, APath, [](const TEmbeddedFile& AFile) { return std::string_view(AFile.Path); });
  return found == FFiles.end() ? nullptr : &*found;
}

void LoadImage(const IImageSource& AImage, TSimulatedMachine& AMachine) {
  LoadRegistry(AImage, AMachine.Registry());
  LoadDrives(AImage, AMachine.Files());
}

}  // namespace varcolin
