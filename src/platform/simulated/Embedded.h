// The files that are built into the native library.
#pragma once

#include <cstddef>
#include <span>

namespace varcolin {

/// One file whose bytes live as long as the program.
struct TEmbeddedFile {
  const char* Path;  ///< UTF-8, relative, with slashes
  const unsigned char* Begin;
  std::size_t Size;
};

/// The files of the sample machine image.
[[nodiscard]] std::span<const TEmbeddedFile> EmbeddedMachine() noexcept;
/// The icons of the library's own resources; the name without folder and extension is that of the resource.
[[nodiscard]] std::span<const TEmbeddedFile> EmbeddedResources() noexcept;

}  // namespace varcolin
