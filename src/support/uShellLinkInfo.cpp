#include "support/uShellLinkInfo.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/Files.h"
#include "platform/Shell.h"
#include "platform/SystemFacts.h"
#include "support/uDateTime.h"
#include "support/uFormat.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::u16string_view LinkExtension = u".lnk";

struct TState {
  IFiles& Files;
  IShell& Shell;
  ISystemFacts& System;
  TShellLinkInfo::TResolveText ResolveText;
  std::mutex Lock;
  TShellFolder Desktop;  // fetched on first use
  std::atomic<bool> HasDesktop = false;

  TState(IFiles& AFiles, IShell& AShell, ISystemFacts& ASystem, TShellLinkInfo::TResolveText AResolveText) noexcept
      : Files(AFiles), Shell(AShell), System(ASystem), ResolveText(AResolveText) {}

  const TShellFolder& DesktopFolder() {
    if (!HasDesktop) FetchDesktop();
    return Desktop;
  }

  void FetchDesktop() {
    const std::scoped_lock guard(Lock);
    if (HasDesktop) return;
    const TWinError error = Shell.GetDesktopFolder(Desktop);
    if (error != WinError::Success) throw EOSError(error, System.ErrorText(error));
    HasDesktop = true;
  }
};
std::unique_ptr<TState> LoadedState;

TState& State() {
  if (LoadedState == nullptr) throw EAssertionFailed(u"uShellLinkInfo", __LINE__);
  return *LoadedState;
}

}  // namespace

void TShellLinkReader::FailFormat(std::u16string_view AFileName) {
  throw TShellLinkInfoException(Format(u"Incorrect file size or format data. (%s)", {AFileName}));
}

void TShellLinkInfo::Load(IFiles& AFiles, IShell& AShell, ISystemFacts& ASystem, TResolveText AResolveText) {
  LoadedState = std::make_unique<TState>(AFiles, AShell, ASystem, AResolveText);
}

void TShellLinkInfo::Unload() noexcept { LoadedState.reset(); }

TShellLinkInfo::TShellLinkInfo(std::u16string_view AFileName) { SetFileName(AFileName); }

TShellLinkInfo::TShellLinkInfo(std::u16string_view AFileName, std::vector<std::byte> AData)
    : FOwnFileName(AFileName), FFileName(FOwnFileName), FOwnData(std::move(AData)), FData(FOwnData) {
  CheckExtension();
  LoadData();
}

TShellLinkInfo::TShellLinkInfo(std::u16string_view AFileName, std::span<const std::byte> AData)
    : FFileName(AFileName), FData(AData) {
  CheckExtension();
  LoadData();
}

void TShellLinkInfo::SetFileName(std::u16string_view AFileName) {
  if (!AFileName.empty() && SameText(AFileName, FFileName)) return;
  std::u16string name(AFileName);
  Clear();
  FOwnFileName = std::move(name);
  FFileName = FOwnFileName;
  if (FFileName.empty()) return;
  CheckExtension();
  FOwnData = ReadFile();
  FData = FOwnData;
  LoadData();
}

void TShellLinkInfo::Clear() noexcept {
  FExtraData.clear();
  FStringData.Clear();
  FLinkInfo.Clear();
  FLinkTargetIDList.Clear();
  FHeaderInfo.Clear();
  FData = {};
  FOwnData = {};
}

void TShellLinkInfo::CheckExtension() const {
  if (EndsText(LinkExtension, FFileName)) return;
  throw TShellLinkInfoException(Format(u"Invalid file extension \"%s\", expected \"%s\" (%s).",
                                       {ExtractFileExt(FFileName), LinkExtension, FFileName}));
}

std::vector<std::byte> TShellLinkInfo::ReadFile() const {
  std::vector<std::byte> data;
  const TWinError error = State().Files.ReadWholeDenyWrite(FFileName, LargestFile, data);
  if (error == WinError::FileTooLarge) TShellLinkReader::FailFormat(FFileName);
  if (error != WinError::Success) throw EFOpenError(FFileName, State().System.ErrorText(error));
  return data;
}

void TShellLinkInfo::LoadData() {
  try {
    if (FData.size() > LargestFile) TShellLinkReader::FailFormat(FFileName);
    TShellLinkReader reader(FData, FFileName);
    FHeaderInfo.Read(reader);
    if (FLinkTargetIDList.IsExists()) FLinkTargetIDList.Read(reader);
    if (FLinkInfo.IsExists()) FLinkInfo.Read(reader);
    FStringData.Read(reader);
    // a file may end right behind its strings
    if (!reader.AtEnd()) ReadExtraData(reader);
    if (!reader.AtEnd()) reader.FailFormat();
  } catch (...) {
    Clear();
    throw;
  }
}

void TShellLinkInfo::ReadExtraData(TShellLinkReader& AReader) {
  constexpr std::uint32_t smallestBlock = 4;
  constexpr std::size_t usualBlocks = 6;
  FExtraData.reserve(usualBlocks);
  for (;;) {
    const auto size = AReader.TakeNumber<std::uint32_t>();
    if (size < smallestBlock) return;
    const auto signature = AReader.TakeNumber<std::uint32_t>();
    FExtraData.push_back(TExtraData::CreateExtraData(AReader, size, signature));
  }
}

const TExtraData* TShellLinkInfo::ExtraDataByType(TExtraDataType AType) const noexcept {
  const auto found = std::ranges::find(FExtraData, AType, &TExtraData::DataType);
  return found == FExtraData.end() ? nullptr : &*found;
}

std::u16string TShellLinkInfo::StringProps(TExtraDataType AType) const {
  const TExtraData* const block = ExtraDataByType(AType);
  return block == nullptr ? std::u16string{} : TExtraDataStringProps(*block).Data();
}

std::u16string TShellLinkInfo::PathName() const {
  std::u16string path = StringProps(TExtraDataType::edtEnvironmentProps);
  if (path.empty() && FLinkTargetIDList.IsExists()) path = FLinkTargetIDList.Path();
  if (!path.empty()) return path;
  if (FLinkInfo.IsLocalLink()) return FLinkInfo.LocalBasePath() + FLinkInfo.CommonPathSuffix();
  return FLinkInfo.NetName();
}

std::u16string TShellLinkInfo::IconLocation() const {
  std::u16string location = StringProps(TExtraDataType::edtIconEnvironmentPros);
  return location.empty() ? FStringData.IconLocation() : location;
}

std::u16string TShellLinkInfo::TextOf(std::span<const std::byte> ABytes, bool AIsUnicode) {
  if (AIsUnicode) return TextFromBytes(ABytes);
  const std::span<const std::byte> text = BytesToNul(ABytes);
  std::u16string result;
  if (text.empty() || State().System.AnsiToText(text, result) != WinError::Success) return {};
  return result;
}

std::u16string TShellLinkInfo::DisplayNameOf(std::span<const std::byte> AIDList, std::uint32_t AForm) {
  if (AIDList.empty()) return {};
  const TShellFolder& desktop = State().DesktopFolder();
  std::u16string name;
  if (State().Shell.GetDisplayName(desktop, AIDList, AForm, name) != WinError::Success) return {};
  return name;
}

std::u16string TShellLinkInfo::ResolveText(const std::u16string& AText) { return State().ResolveText(AText); }

TDateTime TShellLinkInfo::LocalDateTime(std::uint64_t ATicks) {
  TFileTime local;
  if (State().System.ToLocalTime(TFileTime{ATicks}, local) != WinError::Success) return MinimumDateTime;
  return FileTimeToDateTime(local);
}

}  // namespace varcolin
