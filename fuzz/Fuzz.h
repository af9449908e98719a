// What the fuzzers share. Each fuzzer is one file with one LLVMFuzzerTestOneInput, which reports a fault by ending the
// process: a sanitizer's finding, an exception that it does not expect, or a Check that fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

#include "support/uText.h"

namespace varcolin::fuzz {

[[nodiscard]] inline std::span<const std::byte> AsInput(const std::uint8_t* AData, std::size_t ASize) noexcept {
  return std::as_bytes(std::span(AData, ASize));
}

/// The input as text: behind a byte 0xFF UTF-16 units as they are, else UTF-8, so that seeds are readable files.
[[nodiscard]] inline std::u16string AsText(std::span<const std::byte> AInput) {
  if (AInput.empty() || AInput.front() != std::byte{0xFF}) {
    return FromUtf8({reinterpret_cast<const char*>(AInput.data()), AInput.size()});
  }
  std::u16string text((AInput.size() - 1) / sizeof(char16_t), u'\0');
  if (!text.empty()) std::memcpy(text.data(), AInput.data() + 1, text.size() * sizeof(char16_t));
  return text;
}

/// Ends the process with ARule when what it says does not hold.
inline void Check(bool AHolds, const char* ARule) {
  if (AHolds) return;
  std::fprintf(stderr, "fuzz: broken rule: %s\n", ARule);
  std::abort();
}

}  // namespace varcolin::fuzz
