// The program part of a command line.
#pragma once

#include <functional>
#include <string_view>

namespace varcolin {

/// Answers whether a text, as it stands in a command line, names an existing file.
using TIsProgramFile = std::function<bool(std::u16string_view)>;

/// The program that ACommand starts, as a part of ACommand without quotes; empty when it names none.
///
/// - Quoted: what stands between the quotes, also when they are doubled. A lone opening quote is passed over. When the
///   quotes enclose switches too (a blank and a slash), the rules for unquoted text apply to what they enclose.
/// - Unquoted: the first prefix that AIsFile accepts; else the first one that ends in the extension of an executable;
///   else what stands before the first blank. A prefix ends before a blank, a comma, a quote or the first slash, where
///   switches may be glued to the program. No prefix reaches over a character that no file name has, over a blank
///   followed by a slash, or over more than 1,024 units.
[[nodiscard]] std::u16string_view ProgramPart(std::u16string_view ACommand, const TIsProgramFile& AIsFile);

}  // namespace varcolin
