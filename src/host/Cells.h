// Text on a terminal: what it may contain and how many cells it takes. UTF-8 in and out; any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace varcolin::host {

/// A width that no text reaches.
inline constexpr std::size_t UnlimitedCells = static_cast<std::size_t>(-1);

/// Whether a character would steer a terminal or reorder what surrounds it: control characters, line and paragraph
/// separators, the bidirectional controls, and other characters without a shape of their own.
[[nodiscard]] bool IsSteering(char32_t ACharacter) noexcept;
/// Cells that a character takes: 2 for East Asian wide ones and pictographs, 0 for combining marks, else 1.
[[nodiscard]] unsigned CharacterCells(char32_t ACharacter) noexcept;

/// A text that is safe to print: steering characters and malformed bytes become U+FFFD, and a base character keeps at
/// most eight combining marks.
[[nodiscard]] std::string Printable(std::string_view AText);
/// Cells that a text takes which came from here.
[[nodiscard]] std::size_t TextCells(std::string_view AText) noexcept;
/// The text made printable and, when it takes more than AWidth cells, cut to at most that many with an ellipsis as its
/// last one.
[[nodiscard]] std::string FitToCells(std::string_view AText, std::size_t AWidth);
/// The text made printable and broken into lines of at most AWidth cells (at least 2), at blanks where there are some;
/// the blank at which a line ends is left out.
[[nodiscard]] std::vector<std::string> WrapToCells(std::string_view AText, std::size_t AWidth);

/// Appends "Label:" in ALabelCells cells and the value, made printable and wrapped so that no line takes more than
/// AWidth cells where there is room; nothing for an empty value.
void AppendProperty(std::string& AText, std::string_view ALabel, std::string_view AValue, std::size_t ALabelCells,
                    std::size_t AWidth);

}  // namespace varcolin::host
