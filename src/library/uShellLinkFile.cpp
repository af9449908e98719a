#include "library/uShellLinkFile.h"

#include <utility>

#include "products/uInterfaceGuard.h"
#include "support/uGuid.h"

namespace varcolin {

namespace {

template <class TGet>
void WriteText(TOleString* AResult, TGet AGet) noexcept {
  if (AResult == nullptr) return;
  *AResult = nullptr;
  GuardInterface([&] {
    if (const std::u16string text = AGet(); !text.empty()) *AResult = AllocOleString(text);
  });
}

std::u16string_view BlockName(TExtraDataType AType) noexcept {
  switch (AType) {
    case TExtraDataType::edtConsoleProps:
      return u"ConsoleProps";
    case TExtraDataType::edtConsoleFEProps:
      return u"ConsoleFEProps";
    case TExtraDataType::edtDarwinProps:
      return u"DarwinProps";
    case TExtraDataType::edtEnvironmentProps:
      return u"EnvironmentProps";
    case TExtraDataType::edtIconEnvironmentPros:
      return u"IconEnvironmentProps";
    case TExtraDataType::edtKnowFolderProps:
      return u"KnownFolderProps";
    case TExtraDataType::edtPropertyStoreProps:
      return u"PropertyStoreProps";
    case TExtraDataType::edtShimProps:
      return u"ShimProps";
    case TExtraDataType::edtSpecialFolderProps:
      return u"SpecialFolderProps";
    case TExtraDataType::edtTrackerProps:
      return u"TrackerProps";
    case TExtraDataType::edtVistaAndAboveIDListProps:
      return u"VistaAndAboveIDListProps";
    case TExtraDataType::edtUnknown:
      break;
  }
  return u"UnknownProps";
}

}  // namespace

TShellLinkFile::TShellLinkFile(std::u16string_view AFileName, std::vector<std::byte> AData)
    : FLink(AFileName, std::move(AData)) {
  FDescribers.push_back(&TShellLinkFile::DescribeHeader);
  if (FLink.LinkTargetIDList().IsExists()) FDescribers.push_back(&TShellLinkFile::DescribeIDList);
  if (FLink.LinkInfo().IsExists()) FDescribers.push_back(&TShellLinkFile::DescribeLinkInfo);
  FDescribers.push_back(&TShellLinkFile::DescribeStrings);
}

void VARCOLIN_CALL TShellLinkFile::GetPathName(TOleString* AResult) {
  WriteText(AResult, [this] { return FLink.PathName(); });
}
void VARCOLIN_CALL TShellLinkFile::GetArguments(TOleString* AResult) {
  WriteText(AResult, [this] { return FLink.Arguments(); });
}
void VARCOLIN_CALL TShellLinkFile::GetDescription(TOleString* AResult) {
  WriteText(AResult, [this] { return FLink.Description(); });
}
void VARCOLIN_CALL TShellLinkFile::GetWorkingDirectory(TOleString* AResult) {
  WriteText(AResult, [this] { return FLink.WorkingDirectory(); });
}
void VARCOLIN_CALL TShellLinkFile::GetIconLocation(TOleString* AResult) {
  WriteText(AResult, [this] { return FLink.IconLocation(); });
}
std::int32_t VARCOLIN_CALL TShellLinkFile::GetIconIndex() { return FLink.IconIndex(); }
std::uint32_t VARCOLIN_CALL TShellLinkFile::GetShowCmd() { return FLink.ShowCmd(); }
std::uint32_t VARCOLIN_CALL TShellLinkFile::GetHotKey() { return FLink.HotKey(); }

std::int32_t VARCOLIN_CALL TShellLinkFile::GetSectionCount() {
  return static_cast<std::int32_t>(FDescribers.size() + FLink.ExtraDataCount());
}

void VARCOLIN_CALL TShellLinkFile::GetSectionName(std::int32_t ASection, TOleString* AResult) {
  const TSection* const section = Section(ASection);
  WriteText(AResult, [&] { return std::u16string(section == nullptr ? u"" : section->Name); });
}

std::int32_t VARCOLIN_CALL TShellLinkFile::GetFieldCount(std::int32_t ASection) {
  const TSection* const section = Section(ASection);
  return section == nullptr ? 0 : static_cast<std::int32_t>(section->Fields.size());
}

void VARCOLIN_CALL TShellLinkFile::GetFieldName(std::int32_t ASection, std::int32_t AField, TOleString* AResult) {
  const TField* const field = Field(ASection, AField);
  WriteText(AResult, [&] { return std::u16string(field == nullptr ? u"" : field->Name); });
}

void VARCOLIN_CALL TShellLinkFile::GetFieldValue(std::int32_t ASection, std::int32_t AField, TOleVariant* AResult) {
  if (AResult == nullptr) return;
  *AResult = TOleVariant{};
  const TField* const field = Field(ASection, AField);
  if (field == nullptr) return;
  if (const auto* const text = std::get_if<std::u16string>(&field->Value)) {
    AResult->Type = EVariantType::String;
    AResult->String = AllocOleString(*text);
  } else if (const auto* const number = std::get_if<std::int64_t>(&field->Value)) {
    AResult->Type = EVariantType::Int64;
    AResult->Int64 = *number;
  } else {
    AResult->Type = EVariantType::Date;
    AResult->Date = std::get<TDate>(field->Value).Value;
  }
}

const TShellLinkFile::TSection* TShellLinkFile::Section(std::int32_t AIndex) noexcept {
  if (AIndex < 0 || AIndex >= GetSectionCount()) return nullptr;
  if (AIndex != FCurrentIndex) {
    FCurrentIndex = -1;
    GuardInterface([&] {
      FCurrent = Describe(static_cast<std::size_t>(AIndex));
      FCurrentIndex = AIndex;
    });
  }
  return AIndex == FCurrentIndex ? &FCurrent : nullptr;
}

const TShellLinkFile::TField* TShellLinkFile::Field(std::int32_t ASection, std::int32_t AField) noexcept {
  const TSection* const section = Section(ASection);
  if (section == nullptr || AField < 0 || static_cast<std::size_t>(AField) >= section->Fields.size()) return nullptr;
  return &section->Fields[static_cast<std::size_t>(AField)];
}

TShellLinkFile::TSection TShellLinkFile::Describe(std::size_t AIndex) const {
  if (AIndex < FDescribers.size()) return (this->*FDescribers[AIndex])();
  return DescribeBlock(FLink.ExtraData(AIndex - FDescribers.size()));
}

TShellLinkFile::TSection TShellLinkFile::DescribeHeader() const {
  const THeaderInfo& header = FLink.HeaderInfo();
  const auto date = [](TDateTime ATime) { return TDate{ATime == TShellLinkInfo::MinimumDateTime ? 0 : ATime}; };
  return {u"Header",
          {{u"GUID", GuidToText(header.GUID())},
           {u"LinkFlags", header.LinkFlags()},
           {u"FileAttributes", header.FileAttributes()},
           {u"CreationTime", date(header.CreationTime())},
           {u"AccessTime", date(header.AccessTime())},
           {u"WriteTime", date(header.WriteTime())},
           {u"TargetFileSize", header.TargetFileSize()},
           {u"IconIndex", header.IconIndex()},
           {u"ShowCommand", header.ShowCommand()},
           {u"HotKey", header.HotKey()}}};
}

TShellLinkFile::TSection TShellLinkFile::DescribeIDList() const {
  const TLinkTargetIDList& list = FLink.LinkTargetIDList();
  return {u"LinkTargetIDList",
          {{u"Size", static_cast<std::int64_t>(list.IDList().size())},
           {u"Path", list.Path()},
           {u"DisplayName", list.DisplayName()}}};
}

TShellLinkFile::TSection TShellLinkFile::DescribeLinkInfo() const {
  const TLinkInfo& info = FLink.LinkInfo();
  TSection section{u"LinkInfo", {}};
  if (info.IsLocalLink()) {
    section.Fields = {{u"LocalBasePath", info.LocalBasePath()},
                      {u"CommonPathSuffix", info.CommonPathSuffix()},
                      {u"DriveType", info.DriveType()},
                      {u"DriveSerialNumber", info.DriveSerialNumber()},
                      {u"DriveVolumeLabel", info.DriveVolumeLabel()}};
  }
  if (info.IsNetworkLink()) {
    section.Fields.push_back({u"NetName", info.NetName()});
    section.Fields.push_back({u"DeviceName", info.DeviceName()});
    section.Fields.push_back({u"NetworkProviderType", info.NetworkProviderType()});
  }
  return section;
}

TShellLinkFile::TSection TShellLinkFile::DescribeStrings() const {
  const TStringData& strings = FLink.StringData();
  return {u"StringData",
          {{u"NameString", strings.NameString()},
           {u"RelativePath", strings.RelativePath()},
           {u"WorkingDir", strings.WorkingDir()},
           {u"Arguments", strings.Arguments()},
           {u"IconLocation", strings.IconLocation()}}};
}

TShellLinkFile::TSection TShellLinkFile::DescribeBlock(const TExtraData& ABlock) {
  TSection section{BlockName(ABlock.DataType()), {{u"Size", ABlock.Size()}, {u"Signature", ABlock.Signature()}}};
  const auto add = [&](std::u16string_view AName, auto AValue) {
    section.Fields.emplace_back(AName, std::move(AValue));
  };
  switch (ABlock.DataType()) {
    case TExtraDataType::edtEnvironmentProps:
    case TExtraDataType::edtDarwinProps:
    case TExtraDataType::edtIconEnvironmentPros: {
      const TExtraDataStringProps text(ABlock);
      add(u"DataAnsi", text.DataAnsi());
      add(u"DataUnicode", text.DataUnicode());
      break;
    }
    case TExtraDataType::edtConsoleProps: {
      const TExtraConsoleProps console(ABlock);
      add(u"FillAttributes", console.FillAttributes());
      add(u"PopupFillAttributes", console.PopupFillAttributes());
      add(u"ScreenBufferSizeX", console.ScreenBufferSizeX());
      add(u"ScreenBufferSizeY", console.ScreenBufferSizeY());
      add(u"WindowSizeX", console.WindowSizeX());
      add(u"WindowSizeY", console.WindowSizeY());
      add(u"WindowOriginX", console.WindowOriginX());
      add(u"WindowOriginY", console.WindowOriginY());
      add(u"FontSize", console.FontSize());
      add(u"FontFamily", console.FontFamily());
      add(u"FontWeight", console.FontWeight());
      add(u"FaceName", console.FaceName());
      add(u"CursorSize", console.CursorSize());
      add(u"FullScreen", console.FullScreen());
      add(u"InsertMode", console.InsertMode());
      add(u"AutoPosition", console.AutoPosition());
      add(u"HistoryBufferSize", console.HistoryBufferSize());
      add(u"NumberOfHistoryBuffers", console.NumberOfHistoryBuffers());
      add(u"HistoryNoDup", console.HistoryNoDup());
      break;
    }
    case TExtraDataType::edtConsoleFEProps:
      add(u"CodePage", TExtraConsoleFEProps(ABlock).CodePage());
      break;
    case TExtraDataType::edtSpecialFolderProps: {
      const TExtraSpecialFolderProps folder(ABlock);
      add(u"SpecialFolderID", folder.SpecialFolderID());
      add(u"Offset", folder.Offset());
      break;
    }
    case TExtraDataType::edtKnowFolderProps: {
      const TExtraKnowFolderProps folder(ABlock);
      add(u"KnownFolderID", GuidToText(folder.KnownFolderID()));
      add(u"Offset", folder.Offset());
      break;
    }
    case TExtraDataType::edtTrackerProps: {
      const TExtraTrackerProps tracker(ABlock);
      add(u"Version", tracker.Version());
      add(u"MachineID", tracker.MachineID());
      add(u"Droid1", GuidToText(tracker.Droid1()));
      add(u"Droid2", GuidToText(tracker.Droid2()));
      add(u"DroidBirth1", GuidToText(tracker.DroidBirth1()));
      add(u"DroidBirth2", GuidToText(tracker.DroidBirth2()));
      break;
    }
    case TExtraDataType::edtUnknown:
    case TExtraDataType::edtPropertyStoreProps:
    case TExtraDataType::edtShimProps:
    case TExtraDataType::edtVistaAndAboveIDListProps:
      break;
  }
  return section;
}

}  // namespace varcolin
