// Date-times: days since 1899-12-30 as a double, the time of day as the fraction.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "intf/intf_Base.h"
#include "platform/Types.h"

namespace varcolin {

/// The day at 00:00; false when there is no such day (years 1 to 9999), AResult untouched.
[[nodiscard]] bool TryEncodeDate(std::uint32_t AYear, std::uint32_t AMonth, std::uint32_t ADay,
                                 TDateTime& AResult) noexcept;
/// The date-time of a file time in the file time's own zone, to the millisecond; 0 for a time before 1899-12-30 or
/// past the year 9999.
[[nodiscard]] TDateTime FileTimeToDateTime(TFileTime ATime) noexcept;
/// The broken-down form of a file time (years 1601 to 9999; a later one gives all zeros). Windows:
/// FileTimeToSystemTime, computed here.
[[nodiscard]] TSystemTime FileTimeToSystemTime(TFileTime ATime) noexcept;
/// The file time of a broken-down time; zero when it is no valid time.
[[nodiscard]] TFileTime SystemTimeToFileTime(const TSystemTime& ATime) noexcept;
/// "yyyy.mm.dd hh:nn:ss.zzz" of a time, with ASeparator between hours, minutes and seconds.
[[nodiscard]] std::u16string FormatDateAndTime(const TSystemTime& ATime, std::u16string_view ASeparator);
/// "hh:nn:ss:zzz" of a time, with ASeparator in place of every colon.
[[nodiscard]] std::u16string FormatTime(const TSystemTime& ATime, std::u16string_view ASeparator);

}  // namespace varcolin
