// The texts of Windows error codes, as an English Windows words them.
#include <algorithm>
#include <iterator>

#include "platform/simulated/SimulatedSystem.h"

namespace varcolin {
namespace {

struct TErrorText {
  TWinError Code;
  std::u16string_view Text;
};

constexpr TErrorText Texts[] = {
    {0, u"The operation completed successfully."},
    {1, u"Incorrect function."},
    {2, u"The system cannot find the file specified."},
    {3, u"The system cannot find the path specified."},
    {4, u"The system cannot open the file."},
    {5, u"Access is denied."},
    {6, u"The handle is invalid."},
    {8, u"Not enough storage is available to process this command."},
    {11, u"An attempt was made to load a program with an incorrect format."},
    {13, u"The data is invalid."},
    {14, u"Not enough storage is available to complete this operation."},
    {15, u"The system cannot find the drive specified."},
    {18, u"There are no more files."},
    {19, u"The media is write protected."},
    {21, u"The device is not ready."},
    {32, u"The process cannot access the file because it is being used by another process."},
    {50, u"The request is not supported."},
    {53, u"The network path was not found."},
    {80, u"The file exists."},
    {87, u"The parameter is incorrect."},
    {112, u"There is not enough space on the disk."},
    {120, u"This function is not supported on this system."},
    {122, u"The data area passed to a system call is too small."},
    {123, u"The filename, directory name, or volume label syntax is incorrect."},
    {126, u"The specified module could not be found."},
    {127, u"The specified procedure could not be found."},
    {145, u"The directory is not empty."},
    {161, u"The specified path is invalid."},
    {183, u"Cannot create a file when that file already exists."},
    {193, u"%1 is not a valid Win32 application."},
    {203, u"The system could not find the environment option that was entered."},
    {206, u"The filename or extension is too long."},
    {234, u"More data is available."},
    {258, u"The wait operation timed out."},
    {259, u"No more data is available."},
    {267, u"The directory name is invalid."},
    {487, u"Attempt to access invalid address."},
    {740, u"The requested operation requires elevation."},
    {995, u"The I/O operation has been aborted because of either a thread exit or an application request."},
    {997, u"Overlapped I/O operation is in progress."},
    {998, u"Invalid access to memory location."},
    {1004, u"Invalid flags."},
    {1010, u"The configuration registry key is invalid."},
    {1018, u"Illegal operation attempted on a registry key that has been marked for deletion."},
    {1020, u"Cannot create a symbolic link in a registry key that already has subkeys or values."},
    {1150, u"The specified program requires a newer version of Windows."},
    {1168, u"Element not found."},
    {1223, u"The operation was canceled by the user."},
    {1314, u"A required privilege is not held by the client."},
    {1400, u"Invalid window handle."},
    {1605, u"This action is only valid for products that are currently installed."},
    {1812, u"The specified image file did not contain a resource section."},
    {1813, u"The specified resource type cannot be found in the image file."},
    {1814, u"The specified resource name cannot be found in the image file."},
    {1815, u"The specified resource language ID cannot be found in the image file."},
    {1921, u"The name of the file cannot be resolved by the system."},
};

static_assert(std::ranges::is_sorted(Texts, {}, &TErrorText::Code));

}  // namespace

std::u16string_view EnglishErrorText(TWinError ACode) noexcept {
  const TErrorText* const found = std::ranges::lower_bound(Texts, ACode, {}, &TErrorText::Code);
  return found != std::end(Texts) && found->Code == ACode ? found->Text : std::u16string_view{};
}

}  // namespace varcolin
