// Item ID lists of the shell, as Windows writes them into links: which items a simulated machine understands.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "intf/intf_Base.h"

namespace varcolin {

enum class EShellItem {
  Guid,     ///< a place of the namespace that has a class id
  Drive,    ///< Name is "C:\"
  File,     ///< a file or folder; Name is its long name
  Network,  ///< Name is a whole UNC path
  Unknown,
};

/// The name of an item, up to its NUL: a view of the list's bytes.
class TItemName {
 public:
  TItemName() = default;
  [[nodiscard]] static TItemName Ansi(std::span<const std::byte> AText) noexcept;
  [[nodiscard]] static TItemName Unicode(std::span<const std::byte> AText) noexcept;

  [[nodiscard]] bool IsEmpty() const noexcept { return FText.empty(); }
  [[nodiscard]] std::size_t Length() const noexcept { return FIsUnicode ? FText.size() / 2 : FText.size(); }
  void AppendTo(std::u16string& AResult) const;
  [[nodiscard]] std::u16string Text() const;

 private:
  TItemName(std::span<const std::byte> AText, bool AIsUnicode) noexcept : FText(AText), FIsUnicode(AIsUnicode) {}

  std::span<const std::byte> FText;
  bool FIsUnicode = false;
};

/// One item of a list.
struct TShellItem {
  EShellItem Kind = EShellItem::Unknown;
  TItemName Name;
  TGUID Guid{};
};

/// Walks a list, whose terminator may be missing; the items are views of its bytes. To be copied to walk again from
/// where it is.
class TItemIDList {
 public:
  explicit TItemIDList(std::span<const std::byte> AIDList) noexcept : FRest(AIDList) {}

  /// Whether no item that is left reaches past the end of the bytes or is shorter than its own length field.
  [[nodiscard]] bool IsSound() const noexcept;
  /// Goes on to the next item; false behind the last one and at one that is not sound.
  [[nodiscard]] bool Next(TShellItem& AItem) noexcept;

 private:
  std::span<const std::byte> FRest;
};

}  // namespace varcolin
