#include "products/uIconLists.h"

#include <cstdlib>

#include "services/uDLLGlobals.h"
#include "services/uFileUtils.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uExceptions.h"
#include "support/uFormat.h"

namespace varcolin {

namespace {

constexpr std::int32_t SmallSize = 16;
constexpr std::int32_t LargeSize = 32;
constexpr std::int32_t InitialCapacity = 20;
constexpr std::int32_t Growth = 10;

void Check(TWinError ACode, std::u16string_view AWhat) {
  if (ACode != WinError::Success) throw EOSError(ACode, AWhat);
}

}  // namespace

TIconLists::TIconLists(IIcons& AIcons) : FIcons(AIcons) {
  Check(FIcons.MakeImageList(SmallSize, SmallSize, InitialCapacity, Growth, FSmall), u"The image list was refused.");
  Check(FIcons.MakeImageList(LargeSize, LargeSize, InitialCapacity, Growth, FLarge), u"The image list was refused.");
}

void TIconLists::AppendOwn(std::u16string_view ASmallName, std::u16string_view ALargeName) {
  TIcon small;
  TIcon large;
  std::int32_t index = 0;
  Check(FIcons.LoadOwnIcon(ASmallName, small), ASmallName);
  Check(FIcons.LoadOwnIcon(ALargeName, large), ALargeName);
  if (!AppendPair(small, large, index)) throw Exception(Format(u"The icon %s cannot be listed.", {ASmallName}));
}

void TIconLists::AppendDefault() {
  if (WinVersionInfo::IsWindows(TWindowsVersion::wvWinVista)) {
    AppendOwn(u"ICON_DEF_VISTA_SMALL", u"ICON_DEF_VISTA_LARGE");
  } else {
    AppendOwn(u"ICON_DEF_XP_SMALL", u"ICON_DEF_XP_LARGE");
  }
}

bool TIconLists::AppendFromLocation(const std::u16string& ALocation, std::int32_t& AIndex) {
  const auto helper = DLLGlobals::Helper();
  const std::int64_t number = helper->GetIconIndexPart(ALocation.c_str());
  const std::int64_t position = std::llabs(number);
  if (position > INT32_MAX) return false;
  TOleText filePart;
  helper->GetIconFilePart(ALocation.c_str(), filePart.Receive());
  const std::u16string file = FileUtils::CheckFileX64(FileUtils::PrepareFileName(filePart.View()));
  if (file.empty()) return false;
  TIcon large;
  TIcon small;
  if (FIcons.ExtractIcons(file, static_cast<std::int32_t>(position), large, small) != WinError::Success) return false;
  if (!large && !small) return false;
  return AppendPair(small ? small : large, large ? large : small, AIndex);
}

bool TIconLists::AppendCopy(const TIconLists& AFrom, std::int32_t AFromIndex, std::int32_t& AIndex) {
  TIcon small;
  TIcon large;
  return FIcons.CopyImage(AFrom.FSmall, AFromIndex, small) == WinError::Success &&
         FIcons.CopyImage(AFrom.FLarge, AFromIndex, large) == WinError::Success && AppendPair(small, large, AIndex);
}

bool TIconLists::AppendPair(const TIcon& ASmall, const TIcon& ALarge, std::int32_t& AIndex) {
  std::int32_t smallIndex = 0;
  std::int32_t largeIndex = 0;
  if (FIcons.AppendIcon(FSmall, ASmall, smallIndex) != WinError::Success) return false;
  if (FIcons.AppendIcon(FLarge, ALarge, largeIndex) != WinError::Success) {
    // the lists must agree on every index: fill the gap with the icon that could be listed
    if (FIcons.AppendIcon(FLarge, ASmall, largeIndex) != WinError::Success) return false;
  }
  AIndex = largeIndex;
  return true;
}

}  // namespace varcolin
