// The files that the pages of the lists are made of (src/host/page), as they are built into the host.
#pragma once

#include <cstddef>
#include <span>

namespace varcolin::host {

/// One file whose bytes live as long as the program.
struct TEmbeddedFile {
  const char* Path;  ///< its name
  const unsigned char* Begin;
  std::size_t Size;
};

/// The template, the style and the script.
[[nodiscard]] std::span<const TEmbeddedFile> PageFiles() noexcept;

}  // namespace varcolin::host
