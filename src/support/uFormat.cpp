#include "support/uFormat.h"

#include <algorithm>
#include <charconv>
#include <span>
#include <utility>

#include "support/uExceptions.h"
#include "support/uText.h"

namespace varcolin {
namespace {

/// Widths and precisions above this are mistakes, and would only fill the memory.
constexpr std::uint32_t MaxSize = 4096;

/// What stands between a percent sign and its letter.
struct TSpecifier {
  bool LeftAligned = false;
  std::uint32_t Width = 0;
  bool HasPrecision = false;
  std::uint32_t Precision = 0;
  char16_t Letter = 0;
};

class TFormatter {
 public:
  TFormatter(std::u16string_view AFormat, std::span<const TFormatArg> AArgs) noexcept
      : FFormat(AFormat), FRest(AFormat), FArgs(AArgs) {}

  std::u16string Run() {
    for (;;) {
      const std::size_t percent = FRest.find(u'%');
      FResult += FRest.substr(0, percent);
      if (percent == std::u16string_view::npos) return std::move(FResult);
      FRest.remove_prefix(percent + 1);
      if (FRest.starts_with(u'%')) {
        FRest.remove_prefix(1);
        FResult += u'%';
      } else {
        const TSpecifier specifier = ReadSpecifier();
        if (FNextArg >= FArgs.size()) Fail(u"No argument for format '");
        Append(specifier, FArgs[FNextArg++]);
      }
    }
  }

 private:
  [[noreturn]] void Fail(std::u16string_view AText, std::u16string_view AEnd = u"'") const {
    throw EConvertError(std::u16string(AText).append(FFormat).append(AEnd));
  }
  [[noreturn]] void FailInvalid() const { Fail(u"Format '", u"' invalid or incompatible with argument"); }

  /// Whether a number follows; it is read then.
  bool ReadNumber(std::uint32_t& ANumber) {
    const std::size_t length = std::min(FRest.find_first_not_of(u"0123456789"), FRest.size());
    if (length == 0) return false;
    if (!TryDigitsToInt(FRest.substr(0, length), ANumber) || ANumber > MaxSize) FailInvalid();
    FRest.remove_prefix(length);
    return true;
  }

  bool ReadMark(char16_t AMark) noexcept {
    if (!FRest.starts_with(AMark)) return false;
    FRest.remove_prefix(1);
    return true;
  }

  TSpecifier ReadSpecifier() {
    TSpecifier result;
    std::uint32_t number = 0;
    bool hasNumber = ReadNumber(number);
    if (hasNumber && ReadMark(u':')) {
      FNextArg = number;
      hasNumber = false;
    }
    if (!hasNumber) {
      result.LeftAligned = ReadMark(u'-');
      hasNumber = ReadNumber(number);
    }
    if (hasNumber) result.Width = number;
    if (ReadMark(u'.')) {
      result.HasPrecision = true;
      if (!ReadNumber(result.Precision)) FailInvalid();
    }
    if (FRest.empty()) FailInvalid();
    result.Letter = LowerChar(FRest.front());
    FRest.remove_prefix(1);
    return result;
  }

  void Append(const TSpecifier& ASpecifier, const TFormatArg& AArg) {
    std::u16string digits;
    std::u16string_view text;
    if (ASpecifier.Letter == u's') {
      if (!AArg.IsText()) FailInvalid();
      text = AArg.Text();
      if (ASpecifier.HasPrecision) text = text.substr(0, ASpecifier.Precision);
    } else {
      digits = NumberText(ASpecifier, AArg);
      text = digits;
    }
    const std::size_t padding = ASpecifier.Width > text.size() ? ASpecifier.Width - text.size() : 0;
    if (!ASpecifier.LeftAligned) FResult.append(padding, u' ');
    FResult += text;
    if (ASpecifier.LeftAligned) FResult.append(padding, u' ');
  }

  std::u16string NumberText(const TSpecifier& ASpecifier, const TFormatArg& AArg) const {
    if (AArg.IsText()) FailInvalid();
    char buffer[24];
    std::to_chars_result end{};
    switch (ASpecifier.Letter) {
      case u'd':
        end = std::to_chars(std::begin(buffer), std::end(buffer), AArg.Number());
        break;
      case u'u':
        end = std::to_chars(std::begin(buffer), std::end(buffer), AArg.UnsignedNumber());
        break;
      case u'x':
        end = std::to_chars(std::begin(buffer), std::end(buffer), AArg.UnsignedNumber(), 16);
        break;
      default:
        FailInvalid();
    }
    std::u16string result = UpperCase(FromAscii({std::begin(buffer), end.ptr}));
    const std::size_t sign = result.starts_with(u'-') ? 1 : 0;
    if (result.size() - sign < ASpecifier.Precision) {
      result.insert(sign, ASpecifier.Precision - (result.size() - sign), u'0');
    }
    return result;
  }

  std::u16string_view FFormat;
  std::u16string_view FRest;
  std::span<const TFormatArg> FArgs;
  std::size_t FNextArg = 0;
  std::u16string FResult;
};

}  // namespace

std::u16string Format(std::u16string_view AFormat, std::initializer_list<TFormatArg> AArgs) {
  return TFormatter(AFormat, {AArgs.begin(), AArgs.size()}).Run();
}

}  // namespace varcolin
