#include "support/uDateTime.h"

#include <chrono>

namespace varcolin {
namespace {

using namespace std::chrono;

constexpr std::uint64_t TicksPerMillisecond = 10'000;
constexpr std::uint64_t MillisecondsPerDay = 86'400'000;
constexpr std::uint64_t TicksPerDay = MillisecondsPerDay * TicksPerMillisecond;
constexpr sys_days FileTimeEpoch{year{1601} / January / 1};
constexpr sys_days DateTimeEpoch{year{1899} / December / 30};
/// Days of file times up to the end of the year 9999.
constexpr auto FileTimeDays = static_cast<std::uint64_t>((sys_days{year{10000} / January / 1} - FileTimeEpoch).count());

void AppendNumber(std::u16string& AResult, unsigned ANumber, unsigned ADigits) {
  std::u16string digits(ADigits, u'0');
  for (std::size_t i = ADigits; i-- != 0; ANumber /= 10) digits[i] = static_cast<char16_t>(u'0' + ANumber % 10);
  AResult += digits;
}

void AppendTime(std::u16string& AResult, const TSystemTime& ATime, std::u16string_view ASeparator,
                std::u16string_view ABeforeMilliseconds) {
  AppendNumber(AResult, ATime.Hour, 2);
  AResult += ASeparator;
  AppendNumber(AResult, ATime.Minute, 2);
  AResult += ASeparator;
  AppendNumber(AResult, ATime.Second, 2);
  AResult += ABeforeMilliseconds;
  AppendNumber(AResult, ATime.Milliseconds, 3);
}

}  // namespace

bool TryEncodeDate(std::uint32_t AYear, std::uint32_t AMonth, std::uint32_t ADay, TDateTime& AResult) noexcept {
  if (AYear < 1 || AYear > 9999 || AMonth > 12 || ADay > 31) return false;
  const year_month_day date{year{static_cast<int>(AYear)}, month{AMonth}, day{ADay}};
  if (!date.ok()) return false;
  AResult = static_cast<TDateTime>((sys_days{date} - DateTimeEpoch).count());
  return true;
}

TDateTime FileTimeToDateTime(TFileTime ATime) noexcept {
  constexpr auto epochDays = static_cast<std::uint64_t>((DateTimeEpoch - FileTimeEpoch).count());
  const std::uint64_t fileDays = ATime.Ticks / TicksPerDay;
  if (fileDays < epochDays || fileDays >= FileTimeDays) return 0;
  const std::uint64_t milliseconds = ATime.Ticks % TicksPerDay / TicksPerMillisecond;
  return static_cast<TDateTime>(fileDays - epochDays) +
         static_cast<TDateTime>(milliseconds) / static_cast<TDateTime>(MillisecondsPerDay);
}

TSystemTime FileTimeToSystemTime(TFileTime ATime) noexcept {
  const std::uint64_t fileDays = ATime.Ticks / TicksPerDay;
  if (fileDays >= FileTimeDays) return {};
  const sys_days date = FileTimeEpoch + days{static_cast<int>(fileDays)};
  const year_month_day parts{date};
  const hh_mm_ss time{milliseconds{static_cast<std::int64_t>(ATime.Ticks % TicksPerDay / TicksPerMillisecond)}};
  TSystemTime result;
  result.Year = static_cast<std::uint16_t>(static_cast<int>(parts.year()));
  result.Month = static_cast<std::uint16_t>(static_cast<unsigned>(parts.month()));
  result.DayOfWeek = static_cast<std::uint16_t>(weekday{date}.c_encoding());
  result.Day = static_cast<std::uint16_t>(static_cast<unsigned>(parts.day()));
  result.Hour = static_cast<std::uint16_t>(time.hours().count());
  result.Minute = static_cast<std::uint16_t>(time.minutes().count());
  result.Second = static_cast<std::uint16_t>(time.seconds().count());
  result.Milliseconds = static_cast<std::uint16_t>(time.subseconds().count());
  return result;
}

TFileTime SystemTimeToFileTime(const TSystemTime& ATime) noexcept {
  const year_month_day date{year{ATime.Year}, month{ATime.Month}, day{ATime.Day}};
  if (ATime.Year < 1601 || ATime.Year > 9999 || ATime.Month > 12 || ATime.Day > 31 || !date.ok() || ATime.Hour > 23 ||
      ATime.Minute > 59 || ATime.Second > 59 || ATime.Milliseconds > 999) {
    return {};
  }
  const auto fileDays = static_cast<std::uint64_t>((sys_days{date} - FileTimeEpoch).count());
  const std::uint64_t time = ((ATime.Hour * 60ULL + ATime.Minute) * 60 + ATime.Second) * 1000 + ATime.Milliseconds;
  return {fileDays * TicksPerDay + time * TicksPerMillisecond};
}

std::u16string FormatDateAndTime(const TSystemTime& ATime, std::u16string_view ASeparator) {
  std::u16string result;
  AppendNumber(result, ATime.Year, 4);
  result += u'.';
  AppendNumber(result, ATime.Month, 2);
  result += u'.';
  AppendNumber(result, ATime.Day, 2);
  result += u' ';
  AppendTime(result, ATime, ASeparator, u".");
  return result;
}

std::u16string FormatTime(const TSystemTime& ATime, std::u16string_view ASeparator) {
  std::u16string result;
  AppendTime(result, ATime, ASeparator, ASeparator);
  return result;
}

}  // namespace varcolin
