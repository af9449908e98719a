#include "common/Session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <ctime>
#include <thread>

#include "library/uVarcolin.h"
#include "platform/Files.h"
#include "platform/simulated/RegistryText.h"
#include "services/uStatisticsLog.h"
#include "support/uText.h"

namespace varcolin::testing {

namespace {

std::string DateText(TDateTime ADate) {
  if (ADate == 0) return {};
  constexpr double DaysBefore1970 = 25569;
  constexpr double SecondsPerDay = 86400;
  const std::time_t seconds = static_cast<std::time_t>(std::floor((ADate - DaysBefore1970) * SecondsPerDay + 0.0005));
  char text[64];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::gmtime(&seconds));
  return text;
}

std::vector<TInterfaceRef<IProduct>> ItemsOf(IProductCollection& ACollection) {
  std::vector<TInterfaceRef<IProduct>> items;
  ACollection.Lock();
  for (std::int32_t index = 0; index < ACollection.GetCount(); ++index) {
    ACollection.GetItem(index, items.emplace_back().Receive());
  }
  ACollection.Unlock();
  return items;
}

std::vector<std::string> TitlesOf(const std::vector<TInterfaceRef<IProduct>>& AItems) {
  std::vector<std::string> titles;
  for (const auto& item : AItems) titles.push_back(TitleOf(*item));
  return titles;
}

}  // namespace

std::string PropertyOf(IProduct& AProduct, TPropertyID AID) {
  TVariantValue value;
  AProduct.GetProperty(static_cast<std::int32_t>(AID), value.Receive());
  const TOleVariant& variant = value.Value();
  switch (variant.Type) {
    case EVariantType::String:
      return ToUtf8({variant.String, OleStringLength(variant.String)});
    case EVariantType::Date:
      return DateText(variant.Date);
    case EVariantType::Int32:
      return std::to_string(variant.Int32);
    case EVariantType::Int64:
      return std::to_string(variant.Int64);
    case EVariantType::Null:
      return "null";
    default:
      return "?";
  }
}

std::string ActionsOf(TPossibleActionsSet AActions) {
  static constexpr const char* Names[] = {"uninstall", "quiet", "modify", "repair", "modifyRemove", "forget"};
  std::string text;
  for (std::size_t bit = 0; bit < std::size(Names); ++bit) {
    if ((AActions >> bit & 1) != 0) text.append(text.empty() ? "" : ",").append(Names[bit]);
  }
  return text;
}

std::string TitleOf(IProduct& AProduct) {
  std::string title = PropertyOf(AProduct, TPropertyID::DisplayName);
  if (const std::string type = PropertyOf(AProduct, TPropertyID::ReleaseType); type != "null") {
    return title + " " + PropertyOf(AProduct, TPropertyID::UpdateID) + " (" + type + ") <" +
           PropertyOf(AProduct, TPropertyID::ParentDisplayName) + ">";
  }
  const std::string guid = PropertyOf(AProduct, TPropertyID::Guid);
  return guid.empty() ? title : title + " " + guid;
}

TSession::TSession(const TSimulatedFacts& AFacts) : FInstalled(AFacts) {}

TSession::~TSession() { Unload(); }

void TSession::Reg(std::string_view ABody) {
  const std::string text = "Windows Registry Editor Version 5.00\n\n" + std::string(ABody) + "\n";
  LoadRegistryText(std::as_bytes(std::span(text)), "test.reg", Machine().Registry());
}

void TSession::AddProgram(std::string_view AName, std::string_view AValues) {
  Reg("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\" + std::string(AName) +
      "]\n\"DisplayName\"=\"" + std::string(AName) + "\"\n" + std::string(AValues));
}

IVarcolin& TSession::Load() { return Load(Machine().Facilities()); }

IVarcolin& TSession::Load(const TMachine& AFacilities) {
  FModules = std::make_unique<TLibraryModules>(AFacilities);
  FManager = TVarcolin::Instance(VarcolinGuidText.data());
  return *FManager;
}

void TSession::Unload() {
  if (!FModules) return;
  Stop();
  FManager = nullptr;
  FModules.reset();
}

void TSession::Stop() {
  std::atomic<bool> stopped{false};
  std::thread stopper([&] {
    FManager->Stop();
    stopped = true;
  });
  Machine().Clock().AdvanceUntil([&] { return stopped.load(); }, 100);
  stopper.join();
}

bool TSession::Start(IProduct& AProduct, TPossibleActions AAction) {
  TNativeUInt window = 0;
  return AProduct.RunAction(&AAction, &window);
}

bool TSession::IsBusy(IProduct& AProduct) { return !Start(AProduct, NoAction); }

std::uint32_t TSession::RunToItsEnd(IProduct& AProduct, TPossibleActions AAction) {
  EXPECT_TRUE(Start(AProduct, AAction));
  const std::uint32_t start = Machine().Clock().TickCount();
  // the reader waits as well: both see each step
  Machine().Clock().AdvanceUntil([&] { return !IsBusy(AProduct); }, 50, 2);
  return Machine().Clock().TickCount() - start;
}

void TSession::Discover() {
  if (!FModules) Load();
  FManager->Refresh();
  while (FManager->GetState() != TVRCState::vrcsLoaded) std::this_thread::yield();
  Machine().Clock().WaitUntilBlocked(1);
}

void TSession::LetChangesBeSeen() {
  // one look, the time to settle, and the second before the reading; the reader then waits again
  auto& clock = Machine().Clock();
  for (const std::uint32_t step : {1000U, 500U, 1000U}) {
    clock.WaitUntilBlocked(1);
    clock.Advance(step);
  }
  clock.WaitUntilBlocked(1);
}

std::vector<TInterfaceRef<IProduct>> TSession::Programs() {
  TInterfaceRef<IProductCollection> collection;
  FManager->GetPrograms(collection.Receive());
  return ItemsOf(*collection);
}

std::vector<TInterfaceRef<IProduct>> TSession::Updates() {
  TInterfaceRef<IProductCollection> collection;
  FManager->GetUpdates(collection.Receive());
  return ItemsOf(*collection);
}

std::vector<std::string> TSession::ProgramTitles() { return TitlesOf(Programs()); }

std::vector<std::string> TSession::UpdateTitles() { return TitlesOf(Updates()); }

TInterfaceRef<IProduct> TSession::Program(std::string_view AName) {
  for (auto& item : Programs()) {
    if (PropertyOf(*item, TPropertyID::DisplayName) == AName) return item;
  }
  ADD_FAILURE() << "no program is named " << AName;
  return {};
}

std::vector<std::string> TSession::LogLines() {
  std::vector<std::byte> data;
  const TWinError code = Machine().Files().ReadWhole(StatisticsLog::FilePath(), SIZE_MAX, data);
  EXPECT_EQ(code, WinError::Success);
  std::u16string text(data.size() / sizeof(char16_t), u'\0');
  std::memcpy(text.data(), data.data(), text.size() * sizeof(char16_t));
  std::vector<std::string> lines;
  constexpr std::size_t TimeLength = std::size("hh:nn:ss:zzz: ") - 1;
  for (std::u16string_view line : Split(text, u'\n')) {
    if (line.starts_with(u'\xFEFF')) line.remove_prefix(1);
    if (line.ends_with(u'\r')) line.remove_suffix(1);
    if (line.size() >= TimeLength) lines.push_back(ToUtf8(line.substr(TimeLength)));
  }
  return lines;
}

std::ptrdiff_t TSession::LogCount(std::string_view ALine) { return std::ranges::count(LogLines(), ALine); }

}  // namespace varcolin::testing
