// The interfaces of the suite's "helper.dll": the host helper, the shell helper, the suite's facts and its options
// store. Operations keep their numbers as slots after the three base operations; the slots between are reserved.
//
// Texts are NUL-terminated UTF-16. Results written through a last argument belong to the caller. Any thread.
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// 100-nanosecond steps since 1601-01-01 (Windows: FILETIME), the low word first.
struct TFileTimeWords {
  std::uint32_t Low = 0;
  std::uint32_t High = 0;
};

/// The host helper: folders, paths, versions and file-system redirection.
struct IHelper : IInterface {
  static constexpr TGUID IID{0x5C9ABD04, 0x59E8, 0x4686, {0x8E, 0x32, 0xFF, 0x64, 0x8B, 0xB7, 0xFD, 0xD5}};

  virtual TResultCode VARCOLIN_CALL Reserved1() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved2() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved3() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved4() { return ResultNotImplemented; }
  /// 5: the Windows folder, without a trailing backslash.
  virtual void VARCOLIN_CALL GetWindowsFolder(TOleString* AResult) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved6() { return ResultNotImplemented; }
  /// 7: the folder below which the suite keeps the user's files, without a trailing backslash.
  virtual void VARCOLIN_CALL GetDataFolder(TOleString* AResult) = 0;
  /// 8: the system folder as this process sees it, with a trailing backslash.
  virtual void VARCOLIN_CALL GetSystemFolder(TOleString* AResult) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved9() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved10() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved11() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved12() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved13() { return ResultNotImplemented; }
  /// 14: whether this is a 32-bit process on 64-bit Windows.
  virtual bool VARCOLIN_CALL IsWow64() = 0;
  virtual TResultCode VARCOLIN_CALL Reserved15() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved16() { return ResultNotImplemented; }
  /// 17: switches file-system redirection of the calling thread off; returns the value for the revert.
  virtual TNativeUInt VARCOLIN_CALL DisableRedirection() = 0;
  /// 18: puts redirection back with the value of operation 17, on the same thread.
  virtual void VARCOLIN_CALL RevertRedirection(TNativeUInt AOldValue) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved19() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved20() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved21() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved22() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved23() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved24() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved25() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved26() { return ResultNotImplemented; }
  /// 27: the file name of a path, without folder and extension.
  virtual void VARCOLIN_CALL GetNameWithoutExtension(const char16_t* APath, TOleString* AResult) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved28() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved29() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved30() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved31() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved32() { return ResultNotImplemented; }
  /// 33: normalises a path: blanks around it go, slashes become backslashes, doubled backslashes (but for a leading
  /// pair) and "." and ".." components are resolved. The disk is not consulted.
  virtual void VARCOLIN_CALL NormalizePath(const char16_t* APath, TOleString* AResult) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved34() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved35() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved36() { return ResultNotImplemented; }
  /// 37: switches the suite's debug mode on or off.
  virtual void VARCOLIN_CALL SetDebugMode(bool AOn) = 0;
  /// 38: whether the suite's debug mode is on.
  virtual bool VARCOLIN_CALL IsDebugMode() = 0;
  virtual TResultCode VARCOLIN_CALL Reserved39() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved40() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved41() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved42() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved43() { return ResultNotImplemented; }
  /// 44: the number part of "path,number"; 0 when the text has none. The number may be negative.
  virtual std::int32_t VARCOLIN_CALL GetIconIndexPart(const char16_t* AText) = 0;
  /// 45: the file part of "path,number": the whole text when no number follows the last comma.
  virtual void VARCOLIN_CALL GetIconFilePart(const char16_t* AText, TOleString* AResult) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved46() { return ResultNotImplemented; }
  /// 47: size of a file in bytes; 0 when it cannot be read.
  virtual std::int64_t VARCOLIN_CALL GetSizeOfFile(const char16_t* APath) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved48() { return ResultNotImplemented; }
  /// 49: the date-time of a file time, in the file time's own zone (no conversion to local time); 0 when it lies
  /// before 1899-12-30 or is no valid time.
  virtual void VARCOLIN_CALL FileTimeToDateTime(const TFileTimeWords* ATime, TDateTime* AResult) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved50() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved51() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved52() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved53() { return ResultNotImplemented; }
  /// 54: total size in bytes of the files below a folder; links to other folders are not followed.
  virtual std::int64_t VARCOLIN_CALL GetFolderSize(const char16_t* APath) = 0;
  /// 55: a value of a file's version resource by name ("CompanyName", "ProductVersion", "FileVersion"); empty when
  /// the file has none.
  virtual void VARCOLIN_CALL GetVersionValue(const char16_t* APath, const char16_t* AName, TOleString* AResult) = 0;
  /// 56: the language of a file's version resource, as a language name; empty when the file has none.
  virtual void VARCOLIN_CALL GetVersionLanguage(const char16_t* APath, TOleString* AResult) = 0;

 protected:
  ~IHelper() = default;
};

/// The shell helper.
struct iShellHelper : IInterface {
  static constexpr TGUID IID{0x6773075A, 0x4E7A, 0x4292, {0xA6, 0xB9, 0x12, 0xF2, 0x4F, 0x31, 0x6C, 0x36}};

  virtual TResultCode VARCOLIN_CALL Reserved1() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved2() { return ResultNotImplemented; }
  /// 3: expands %NAME% references; names that are not set stay as written.
  virtual void VARCOLIN_CALL ExpandEnvironment(const char16_t* AText, TOleString* AResult) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved4() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved5() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved6() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved7() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved8() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved9() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved10() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved11() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved12() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved13() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved14() { return ResultNotImplemented; }
  /// 15: a special folder by its CSIDL number, without a trailing backslash; empty when there is none.
  virtual void VARCOLIN_CALL GetSpecialFolder(std::int32_t ACsidl, TOleString* AResult) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved16() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved17() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved18() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved19() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved20() { return ResultNotImplemented; }
  /// 21: the program part of a command line, exactly as it stands there but without quotes. An unquoted program with
  /// blanks is recognised by the first prefix that names an existing file (with or without ".exe"), else by the first
  /// prefix that ends in the extension of an executable; otherwise the program ends at the first blank.
  virtual void VARCOLIN_CALL GetProgramPart(const char16_t* ACommand, TOleString* AResult) = 0;

 protected:
  ~iShellHelper() = default;
};

/// Facts about the suite.
struct IGlobals : IInterface {
  static constexpr TGUID IID{0xE3B78765, 0xF359, 0x4D65, {0x86, 0xA3, 0x5F, 0xE2, 0xCA, 0x92, 0x92, 0x2E}};

  virtual TResultCode VARCOLIN_CALL Reserved1() { return ResultNotImplemented; }
  /// 2: the maker's name.
  virtual void VARCOLIN_CALL GetMakerName(TOleString* AResult) = 0;
  /// 3: the product's name.
  virtual void VARCOLIN_CALL GetProductName(TOleString* AResult) = 0;
  /// 4: the version of the suite.
  virtual void VARCOLIN_CALL GetProductVersion(TOleString* AResult) = 0;
  /// 5: the name of the current user.
  virtual void VARCOLIN_CALL GetNameOfUser(TOleString* AResult) = 0;
  virtual TResultCode VARCOLIN_CALL Reserved6() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved7() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved8() { return ResultNotImplemented; }
  virtual TResultCode VARCOLIN_CALL Reserved9() { return ResultNotImplemented; }
  /// 10: path of the suite's registry root key, with a trailing backslash.
  virtual void VARCOLIN_CALL GetRegistryRoot(TOleString* AResult) = 0;

 protected:
  ~IGlobals() = default;
};

/// The options store: one registry key of the current user, read and written as a whole. One thread at a time.
struct IOptions : IInterface {
  static constexpr TGUID IID{0x6D84DC42, 0x1982, 0x4CEE, {0xA3, 0x7E, 0x5D, 0xF3, 0xBD, 0x71, 0xC1, 0xAD}};

  /// 1: opens the key below the current user's root and reads it; false when that fails (the store is then empty).
  virtual bool VARCOLIN_CALL OpenStore(const char16_t* AKeyPath) = 0;
  /// 2: the text that ReadText gives when the store has no such value.
  virtual void VARCOLIN_CALL SetDefault(const char16_t* AName, const char16_t* AText) = 0;
  /// 3: a value's text, else its default, else empty.
  virtual void VARCOLIN_CALL ReadText(const char16_t* AName, TOleString* AResult) = 0;
  /// 4: sets a value; it reaches the registry with Save.
  virtual void VARCOLIN_CALL WriteText(const char16_t* AName, const char16_t* AText) = 0;
  /// 5: writes what was set to the registry; false when that fails.
  virtual bool VARCOLIN_CALL Save() = 0;

 protected:
  ~IOptions() = default;
};

}  // namespace varcolin
