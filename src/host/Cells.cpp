#include "host/Cells.h"

#include <algorithm>
#include <array>
#include <span>

#include "host/Text.h"

namespace varcolin::host {

namespace {

constexpr char32_t ReplacementCharacter = 0xFFFD;
constexpr std::string_view Ellipsis = "\xE2\x80\xA6";
constexpr unsigned MaximumMarks = 8;

struct TRange {
  char32_t First;
  char32_t Last;
};

// Sorted. U+200C and U+200D are not among them: joining scripts need them, and they only join.
constexpr std::array SteeringRanges{
    TRange{0x0000, 0x001F},   TRange{0x007F, 0x009F}, TRange{0x061C, 0x061C},   TRange{0x180E, 0x180E},
    TRange{0x200B, 0x200B},   TRange{0x200E, 0x200F}, TRange{0x2028, 0x202E},   TRange{0x2060, 0x206F},
    TRange{0xFEFF, 0xFEFF},   TRange{0xFFF0, 0xFFFB}, TRange{0x1BCA0, 0x1BCA3}, TRange{0x1D173, 0x1D17A},
    TRange{0xE0000, 0xE00FF},
};

// Sorted; the blocks of combining marks, taken whole where only a few of their characters are spacing.
constexpr std::array CombiningRanges{
    TRange{0x0300, 0x036F}, TRange{0x0483, 0x0489}, TRange{0x0591, 0x05BD},   TRange{0x05BF, 0x05BF},
    TRange{0x05C1, 0x05C2}, TRange{0x05C4, 0x05C5}, TRange{0x05C7, 0x05C7},   TRange{0x0610, 0x061A},
    TRange{0x064B, 0x065F}, TRange{0x0670, 0x0670}, TRange{0x06D6, 0x06DC},   TRange{0x06DF, 0x06E4},
    TRange{0x06E7, 0x06E8}, TRange{0x06EA, 0x06ED}, TRange{0x0711, 0x0711},   TRange{0x0730, 0x074A},
    TRange{0x07A6, 0x07B0}, TRange{0x0900, 0x0902}, TRange{0x093A, 0x093A},   TRange{0x093C, 0x093C},
    TRange{0x0941, 0x0948}, TRange{0x094D, 0x094D}, TRange{0x0951, 0x0957},   TRange{0x0981, 0x0981},
    TRange{0x09BC, 0x09BC}, TRange{0x09C1, 0x09C4}, TRange{0x09CD, 0x09CD},   TRange{0x0E31, 0x0E31},
    TRange{0x0E34, 0x0E3A}, TRange{0x0E47, 0x0E4E}, TRange{0x0EB1, 0x0EB1},   TRange{0x0EB4, 0x0EBC},
    TRange{0x0EC8, 0x0ECD}, TRange{0x1160, 0x11FF}, TRange{0x1AB0, 0x1AFF},   TRange{0x1DC0, 0x1DFF},
    TRange{0x200C, 0x200D}, TRange{0x20D0, 0x20FF}, TRange{0x302A, 0x302D},   TRange{0x3099, 0x309A},
    TRange{0xFE00, 0xFE0F}, TRange{0xFE20, 0xFE2F}, TRange{0xE0100, 0xE01EF},
};

// Sorted; East Asian wide and fullwidth characters, and the pictographs that terminals draw as wide.
constexpr std::array WideRanges{
    TRange{0x1100, 0x115F},   TRange{0x231A, 0x231B},   TRange{0x2329, 0x232A},   TRange{0x23E9, 0x23EC},
    TRange{0x23F0, 0x23F0},   TRange{0x23F3, 0x23F3},   TRange{0x25FD, 0x25FE},   TRange{0x2614, 0x2615},
    TRange{0x2648, 0x2653},   TRange{0x267F, 0x267F},   TRange{0x2693, 0x2693},   TRange{0x26A1, 0x26A1},
    TRange{0x26AA, 0x26AB},   TRange{0x26BD, 0x26BE},   TRange{0x26C4, 0x26C5},   TRange{0x26CE, 0x26CE},
    TRange{0x26D4, 0x26D4},   TRange{0x26EA, 0x26EA},   TRange{0x26F2, 0x26F3},   TRange{0x26F5, 0x26F5},
    TRange{0x26FA, 0x26FA},   TRange{0x26FD, 0x26FD},   TRange{0x2705, 0x2705},   TRange{0x270A, 0x270B},
    TRange{0x2728, 0x2728},   TRange{0x274C, 0x274C},   TRange{0x274E, 0x274E},   TRange{0x2753, 0x2755},
    TRange{0x2757, 0x2757},   TRange{0x2795, 0x2797},   TRange{0x27B0, 0x27B0},   TRange{0x27BF, 0x27BF},
    TRange{0x2B1B, 0x2B1C},   TRange{0x2B50, 0x2B50},   TRange{0x2B55, 0x2B55},   TRange{0x2E80, 0x303E},
    TRange{0x3041, 0x33FF},   TRange{0x3400, 0x4DBF},   TRange{0x4E00, 0xA4CF},   TRange{0xA960, 0xA97F},
    TRange{0xAC00, 0xD7A3},   TRange{0xF900, 0xFAFF},   TRange{0xFE10, 0xFE19},   TRange{0xFE30, 0xFE6F},
    TRange{0xFF00, 0xFF60},   TRange{0xFFE0, 0xFFE6},   TRange{0x16FE0, 0x18AFF}, TRange{0x1B000, 0x1B2FF},
    TRange{0x1F004, 0x1F004}, TRange{0x1F0CF, 0x1F0CF}, TRange{0x1F18E, 0x1F18E}, TRange{0x1F191, 0x1F19A},
    TRange{0x1F200, 0x1F265}, TRange{0x1F300, 0x1F64F}, TRange{0x1F680, 0x1F6FF}, TRange{0x1F7E0, 0x1F7EB},
    TRange{0x1F90C, 0x1F9FF}, TRange{0x1FA70, 0x1FAFF}, TRange{0x20000, 0x3FFFD},
};

bool IsIn(std::span<const TRange> ARanges, char32_t ACharacter) {
  const auto found = std::ranges::lower_bound(ARanges, ACharacter, {}, &TRange::Last);
  return found != ARanges.end() && ACharacter >= found->First;
}

bool IsPlainAscii(std::string_view AText) {
  return std::ranges::all_of(AText, [](char ACharacter) { return ACharacter >= ' ' && ACharacter <= '~'; });
}

}  // namespace

bool IsSteering(char32_t ACharacter) noexcept { return IsIn(SteeringRanges, ACharacter); }

unsigned CharacterCells(char32_t ACharacter) noexcept {
  if (ACharacter < 0x300) return 1;
  if (IsIn(CombiningRanges, ACharacter)) return 0;
  return IsIn(WideRanges, ACharacter) ? 2 : 1;
}

std::string Printable(std::string_view AText) {
  if (IsPlainAscii(AText)) return std::string(AText);
  std::string result;
  result.reserve(AText.size());
  unsigned marks = MaximumMarks;  // a text that begins with a mark has no base for it
  while (!AText.empty()) {
    char32_t character = NextCharacter(AText);
    if (IsSteering(character)) character = ReplacementCharacter;
    if (CharacterCells(character) != 0) {
      marks = 0;
    } else if (marks++ >= MaximumMarks) {
      continue;
    }
    AppendUtf8(result, character);
  }
  return result;
}

std::size_t TextCells(std::string_view AText) noexcept {
  if (IsPlainAscii(AText)) return AText.size();
  std::size_t result = 0;
  while (!AText.empty()) result += CharacterCells(NextCharacter(AText));
  return result;
}

std::string FitToCells(std::string_view AText, std::size_t AWidth) {
  std::string text = Printable(AText);
  if (TextCells(text) <= AWidth) return text;
  if (AWidth == 0) return {};
  std::string_view rest = text;
  std::size_t used = 0;
  std::size_t kept = 0;
  while (!rest.empty()) {
    used += CharacterCells(NextCharacter(rest));
    if (used > AWidth - 1) break;
    kept = text.size() - rest.size();
  }
  text.resize(kept);
  text += Ellipsis;
  return text;
}

std::vector<std::string> WrapToCells(std::string_view AText, std::size_t AWidth) {
  const std::string text = Printable(AText);
  const std::size_t width = std::max<std::size_t>(AWidth, 2);
  std::vector<std::string> lines;
  std::string_view line = text;
  while (TextCells(line) > width) {
    std::string_view rest = line;
    std::size_t used = 0;
    std::size_t end = 0;    // behind the last character that fits
    std::size_t blank = 0;  // behind the last blank that fits
    while (!rest.empty()) {
      const char32_t character = NextCharacter(rest);
      used += CharacterCells(character);
      if (used > width) break;
      end = line.size() - rest.size();
      if (character == U' ') blank = end;
    }
    const std::size_t cut = blank > end / 2 ? blank : end;
    lines.emplace_back(line.substr(0, cut == blank ? cut - 1 : cut));
    line.remove_prefix(cut);
  }
  lines.emplace_back(line);
  return lines;
}

void AppendProperty(std::string& AText, std::string_view ALabel, std::string_view AValue, std::size_t ALabelCells,
                    std::size_t AWidth) {
  constexpr std::size_t leastValueCells = 16;
  if (AValue.empty()) return;
  std::string lead = std::string(ALabel) + ':';
  lead.resize(ALabelCells, ' ');
  const bool limited = AWidth != UnlimitedCells;
  const std::size_t width = limited ? std::max(AWidth, ALabelCells + leastValueCells) - ALabelCells : AWidth;
  for (const std::string& line : WrapToCells(AValue, width)) {
    AText += lead + line + '\n';
    lead.assign(ALabelCells, ' ');
  }
}

}  // namespace varcolin::host
