// A shell link file as a host sees it.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "intf/intf_ShellLink.h"
#include "support/uInterfacedObject.h"
#include "support/uShellLinkInfo.h"

namespace varcolin {

/// Implements IShellLinkFile over the parser's object; it keeps the values of the section that was asked for last.
class TShellLinkFile final : public TInterfacedObject<IShellLinkFile> {
 public:
  /// Raises what the parser raises.
  TShellLinkFile(std::u16string_view AFileName, std::vector<std::byte> AData);

  void VARCOLIN_CALL GetPathName(TOleString* AResult) override;
  void VARCOLIN_CALL GetArguments(TOleString* AResult) override;
  void VARCOLIN_CALL GetDescription(TOleString* AResult) override;
  void VARCOLIN_CALL GetWorkingDirectory(TOleString* AResult) override;
  void VARCOLIN_CALL GetIconLocation(TOleString* AResult) override;
  std::int32_t VARCOLIN_CALL GetIconIndex() override;
  std::uint32_t VARCOLIN_CALL GetShowCmd() override;
  std::uint32_t VARCOLIN_CALL GetHotKey() override;
  std::int32_t VARCOLIN_CALL GetSectionCount() override;
  void VARCOLIN_CALL GetSectionName(std::int32_t ASection, TOleString* AResult) override;
  std::int32_t VARCOLIN_CALL GetFieldCount(std::int32_t ASection) override;
  void VARCOLIN_CALL GetFieldName(std::int32_t ASection, std::int32_t AField, TOleString* AResult) override;
  void VARCOLIN_CALL GetFieldValue(std::int32_t ASection, std::int32_t AField, TOleVariant* AResult) override;

 private:
  /// A local date.
  struct TDate {
    TDateTime Value;
  };
  using TValue = std::variant<std::u16string, std::int64_t, TDate>;
  struct TField {
    std::u16string_view Name;
    TValue Value;

    TField(std::u16string_view AName, TValue AValue) : Name(AName), Value(std::move(AValue)) {}
    TField(std::u16string_view AName, std::integral auto AValue) : Name(AName), Value(std::int64_t{AValue}) {}
  };
  struct TSection {
    std::u16string_view Name;
    std::vector<TField> Fields;
  };

  /// The section at a position; null when there is none, or no memory for it.
  [[nodiscard]] const TSection* Section(std::int32_t AIndex) noexcept;
  [[nodiscard]] const TField* Field(std::int32_t ASection, std::int32_t AField) noexcept;
  [[nodiscard]] TSection Describe(std::size_t AIndex) const;
  [[nodiscard]] TSection DescribeHeader() const;
  [[nodiscard]] TSection DescribeIDList() const;
  [[nodiscard]] TSection DescribeLinkInfo() const;
  [[nodiscard]] TSection DescribeStrings() const;
  [[nodiscard]] static TSection DescribeBlock(const TExtraData& ABlock);

  TShellLinkInfo FLink;
  /// What describes the sections in front of the blocks, as far as the file has them.
  std::vector<TSection (TShellLinkFile::*)() const> FDescribers;
  std::int32_t FCurrentIndex = -1;
  TSection FCurrent;
};

}  // namespace varcolin
