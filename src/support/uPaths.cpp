#include "support/uPaths.h"

namespace varcolin {
namespace {

/// Where the file name begins.
std::size_t FileNameStart(std::u16string_view APath) noexcept {
  const std::size_t at = APath.find_last_of(u"\\:");
  return at == std::u16string_view::npos ? 0 : at + 1;
}

}  // namespace

std::u16string IncludeTrailingPathDelimiter(std::u16string_view APath) {
  std::u16string result(APath);
  if (!result.ends_with(u'\\')) result += u'\\';
  return result;
}

std::u16string_view ExcludeTrailingPathDelimiter(std::u16string_view APath) noexcept {
  if (APath.ends_with(u'\\')) APath.remove_suffix(1);
  return APath;
}

std::u16string_view ExtractFileName(std::u16string_view APath) noexcept { return APath.substr(FileNameStart(APath)); }

std::u16string_view ExtractFilePath(std::u16string_view APath) noexcept {
  return APath.substr(0, FileNameStart(APath));
}

std::u16string_view ExtractFileExt(std::u16string_view APath) noexcept {
  const std::u16string_view name = ExtractFileName(APath);
  const std::size_t dot = name.rfind(u'.');
  return dot == std::u16string_view::npos ? std::u16string_view{} : name.substr(dot);
}

}  // namespace varcolin
