// The library's reader of shell link files (".lnk"), for hosts that show what stands in one. The manager hands it out:
// ask IVarcolin for IShellLinkReader (QueryInterface).
//
// Results written through a last argument belong to the caller. The reader: any thread; a link: one thread at a time.
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// One link file that was read: what it stands for, and all of its sections with their fields.
struct IShellLinkFile : IInterface {
  static constexpr TGUID IID{0xD1465CA9, 0x77C6, 0x49DF, {0x92, 0x9C, 0x4E, 0x4D, 0x64, 0x73, 0x02, 0x43}};

  /// The target's path; %NAME% references are not expanded. Null when the link names none.
  virtual void VARCOLIN_CALL GetPathName(TOleString* AResult) = 0;
  virtual void VARCOLIN_CALL GetArguments(TOleString* AResult) = 0;
  /// The comment; an indirect resource reference is resolved.
  virtual void VARCOLIN_CALL GetDescription(TOleString* AResult) = 0;
  virtual void VARCOLIN_CALL GetWorkingDirectory(TOleString* AResult) = 0;
  /// The icon's file; %NAME% references are not expanded.
  virtual void VARCOLIN_CALL GetIconLocation(TOleString* AResult) = 0;
  virtual std::int32_t VARCOLIN_CALL GetIconIndex() = 0;
  /// How the target's window is shown, a number of the system (SW_).
  virtual std::uint32_t VARCOLIN_CALL GetShowCmd() = 0;
  /// Low byte: virtual-key code; high byte: modifiers (1 shift, 2 control, 4 alt).
  virtual std::uint32_t VARCOLIN_CALL GetHotKey() = 0;

  /// The sections that the file has, in its order. Names are CamelCase words ("Header", "TrackerProps"); null and 0 for
  /// an index out of range.
  virtual std::int32_t VARCOLIN_CALL GetSectionCount() = 0;
  virtual void VARCOLIN_CALL GetSectionName(std::int32_t ASection, TOleString* AResult) = 0;
  /// The fields of a section. A value is a string, a 64-bit number, or a local date (0 for none).
  virtual std::int32_t VARCOLIN_CALL GetFieldCount(std::int32_t ASection) = 0;
  virtual void VARCOLIN_CALL GetFieldName(std::int32_t ASection, std::int32_t AField, TOleString* AResult) = 0;
  virtual void VARCOLIN_CALL GetFieldValue(std::int32_t ASection, std::int32_t AField, TOleVariant* AResult) = 0;

 protected:
  ~IShellLinkFile() = default;
};

/// Reads link files.
struct IShellLinkReader : IInterface {
  static constexpr TGUID IID{0xD1465CA9, 0x77C6, 0x49DF, {0x92, 0x9C, 0x4E, 0x4D, 0x64, 0x73, 0x02, 0x42}};

  /// Reads a link from the bytes of its file. AFileName: its name, whose extension is checked. Null for a file that is
  /// no link; AError then gets the reason in a sentence, an OLE string of the caller's own, else null.
  virtual void VARCOLIN_CALL ReadLink(const char16_t* AFileName, const void* AData, std::int64_t ASize,
                                      TOleString* AError, IShellLinkFile** AResult) = 0;

 protected:
  ~IShellLinkReader() = default;
};

}  // namespace varcolin
