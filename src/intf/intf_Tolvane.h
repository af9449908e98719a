// The interface of the suite's "TolvaneHelper.dll": how far files and publishers are trusted.
#pragma once

#include "intf/intf_Base.h"
#include "intf/intf_Varcolin.h"

namespace varcolin {

/// Ratings of files and publishers. Any thread.
struct ITolvane : IInterface {
  static constexpr TGUID IID{0xA90B8362, 0xCEEF, 0x4902, {0xA6, 0x39, 0xA0, 0x12, 0x5E, 0xDD, 0x02, 0x01}};

  /// 1: the rating of a file, by its path; stUnknown when nothing is known.
  virtual TSoftwareRating VARCOLIN_CALL GetFileRating(const char16_t* APath) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved2() { return ResultNotImplemented; }
  /// 3: the rating of a publisher, by its name; stUnknown when nothing is known.
  virtual TSoftwareRating VARCOLIN_CALL GetPublisherRating(const char16_t* AName) = 0;

 protected:
  ~ITolvane() = default;
};

}  // namespace varcolin
