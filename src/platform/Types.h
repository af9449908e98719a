// The types that all facilities of the platform seam share.
//
// One method of a facility is one logical Windows call: the same flags, the same error codes, enumeration by index. A
// method that can fail returns a Windows error code and leaves its outputs untouched on failure. Text is UTF-16.
// Methods may be called from any thread unless they say otherwise; one handle is used by one thread at a time.
#pragma once

#include <compare>
#include <cstdint>
#include <utility>

namespace varcolin {

/// A Windows system error code (GetLastError, or the result of the registry functions).
using TWinError = std::uint32_t;

/// The codes that code above the seam tells apart; methods may return any other.
namespace WinError {
inline constexpr TWinError Success = 0;
inline constexpr TWinError InvalidFunction = 1;
inline constexpr TWinError FileNotFound = 2;
inline constexpr TWinError PathNotFound = 3;
inline constexpr TWinError AccessDenied = 5;
inline constexpr TWinError InvalidHandle = 6;
inline constexpr TWinError NotEnoughMemory = 8;
inline constexpr TWinError BadFormat = 11;
inline constexpr TWinError NoMoreFiles = 18;
inline constexpr TWinError SharingViolation = 32;
inline constexpr TWinError NotSupported = 50;
inline constexpr TWinError FileExists = 80;
inline constexpr TWinError InvalidParameter = 87;
inline constexpr TWinError InvalidName = 123;
inline constexpr TWinError ModuleNotFound = 126;
inline constexpr TWinError ProcedureNotFound = 127;
inline constexpr TWinError FolderNotEmpty = 145;
inline constexpr TWinError AlreadyExists = 183;
inline constexpr TWinError BadExecutable = 193;
inline constexpr TWinError MoreData = 234;
inline constexpr TWinError NoMoreItems = 259;
inline constexpr TWinError InvalidFolderName = 267;
inline constexpr TWinError BadRegistryPath = 161;
inline constexpr TWinError FileTooLarge = 223;
inline constexpr TWinError KeyDeleted = 1018;
inline constexpr TWinError PrivilegeNotHeld = 1314;
inline constexpr TWinError InvalidWindowHandle = 1400;
inline constexpr TWinError ResourceDataNotFound = 1812;
inline constexpr TWinError ResourceTypeNotFound = 1813;
inline constexpr TWinError ResourceNameNotFound = 1814;
}  // namespace WinError

/// Waits without an end.
inline constexpr std::uint32_t WaitForever = 0xFFFFFFFF;

/// How a wait ended.
enum class EWaitResult { Signaled, TimedOut, Failed };

/// 100-nanosecond steps since 1601-01-01, universal time unless a name says local (Windows: FILETIME).
struct TFileTime {
  std::uint64_t Ticks = 0;

  friend constexpr auto operator<=>(const TFileTime&, const TFileTime&) = default;
};

/// A broken-down time (Windows: SYSTEMTIME).
struct TSystemTime {
  std::uint16_t Year = 0;
  std::uint16_t Month = 0;
  std::uint16_t DayOfWeek = 0;  ///< 0 is Sunday
  std::uint16_t Day = 0;
  std::uint16_t Hour = 0;
  std::uint16_t Minute = 0;
  std::uint16_t Second = 0;
  std::uint16_t Milliseconds = 0;
};

/// Owns one handle of a facility and gives it back when it goes out of scope, through the facility's
/// `CloseValue(TTag, value) noexcept`. TTag tells the kinds of handle of one facility apart.
template <class TFacility, class TTag>
class THandle {
 public:
  THandle() noexcept = default;
  THandle(TFacility& AOwner, std::uintptr_t AValue) noexcept : FOwner(&AOwner), FValue(AValue) {}
  THandle(THandle&& AOther) noexcept
      : FOwner(std::exchange(AOther.FOwner, nullptr)), FValue(std::exchange(AOther.FValue, 0)) {}
  THandle& operator=(THandle&& AOther) noexcept {
    std::swap(FOwner, AOther.FOwner);
    std::swap(FValue, AOther.FValue);
    return *this;
  }
  ~THandle() { Close(); }

  /// Gives the handle back now.
  void Close() noexcept {
    if (TFacility* owner = std::exchange(FOwner, nullptr)) owner->CloseValue(TTag{}, std::exchange(FValue, 0));
  }
  /// The raw value; 0 when empty.
  [[nodiscard]] std::uintptr_t Value() const noexcept { return FValue; }
  explicit operator bool() const noexcept { return FOwner != nullptr; }

 private:
  TFacility* FOwner = nullptr;
  std::uintptr_t FValue = 0;
};

}  // namespace varcolin
