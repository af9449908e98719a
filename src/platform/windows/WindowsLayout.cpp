// Holds the types and numbers of the seam and of the library boundary against the real headers. Nothing here runs.
#include <cstddef>

#include "intf/intf_Base.h"
#include "platform/Files.h"
#include "platform/MessageBoxes.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "platform/Sync.h"
#include "platform/SystemFacts.h"
#include "platform/windows/WindowsApi.h"

namespace varcolin {

// The boundary's records.
static_assert(sizeof(TGUID) == sizeof(GUID) && alignof(TGUID) == alignof(GUID));
static_assert(offsetof(TGUID, D2) == offsetof(GUID, Data2) && offsetof(TGUID, D4) == offsetof(GUID, Data4));
static_assert(sizeof(TOleVariant) == sizeof(VARIANT) && alignof(TOleVariant) == alignof(VARIANT));
static_assert(offsetof(TOleVariant, Type) == offsetof(VARIANT, vt));
static_assert(offsetof(TOleVariant, String) == offsetof(VARIANT, bstrVal));
static_assert(offsetof(TOleVariant, Int64) == offsetof(VARIANT, llVal));
static_assert(sizeof(TOleString) == sizeof(BSTR) && sizeof(*TOleString{}) == sizeof(OLECHAR));
static_assert(sizeof(TDateTime) == sizeof(DATE) && sizeof(TResultCode) == sizeof(HRESULT));
static_assert(sizeof(TEventHandler) == 2 * sizeof(void*) && offsetof(TEventHandler, Object) == sizeof(void*));
static_assert(sizeof(IInterface) == sizeof(IUnknown));
static_assert(static_cast<VARTYPE>(EVariantType::Empty) == VT_EMPTY);
static_assert(static_cast<VARTYPE>(EVariantType::Null) == VT_NULL);
static_assert(static_cast<VARTYPE>(EVariantType::Int32) == VT_I4);
static_assert(static_cast<VARTYPE>(EVariantType::Date) == VT_DATE);
static_assert(static_cast<VARTYPE>(EVariantType::String) == VT_BSTR);
static_assert(static_cast<VARTYPE>(EVariantType::Int64) == VT_I8);
static_assert(ResultOk == S_OK && ResultNoInterface == E_NOINTERFACE);
static_assert(ResultNotImplemented == E_NOTIMPL && ResultInvalidPointer == E_POINTER);

// Error codes.
static_assert(sizeof(TWinError) == sizeof(DWORD));
static_assert(WinError::Success == ERROR_SUCCESS && WinError::InvalidFunction == ERROR_INVALID_FUNCTION);
static_assert(WinError::FileNotFound == ERROR_FILE_NOT_FOUND && WinError::PathNotFound == ERROR_PATH_NOT_FOUND);
static_assert(WinError::AccessDenied == ERROR_ACCESS_DENIED && WinError::InvalidHandle == ERROR_INVALID_HANDLE);
static_assert(WinError::NotEnoughMemory == ERROR_NOT_ENOUGH_MEMORY && WinError::BadFormat == ERROR_BAD_FORMAT);
static_assert(WinError::NoMoreFiles == ERROR_NO_MORE_FILES && WinError::SharingViolation == ERROR_SHARING_VIOLATION);
static_assert(WinError::NotSupported == ERROR_NOT_SUPPORTED && WinError::FileExists == ERROR_FILE_EXISTS);
static_assert(WinError::InvalidParameter == ERROR_INVALID_PARAMETER && WinError::InvalidName == ERROR_INVALID_NAME);
static_assert(WinError::ModuleNotFound == ERROR_MOD_NOT_FOUND && WinError::ProcedureNotFound == ERROR_PROC_NOT_FOUND);
static_assert(WinError::FolderNotEmpty == ERROR_DIR_NOT_EMPTY && WinError::AlreadyExists == ERROR_ALREADY_EXISTS);
static_assert(WinError::BadExecutable == ERROR_BAD_EXE_FORMAT && WinError::MoreData == ERROR_MORE_DATA);
static_assert(WinError::NoMoreItems == ERROR_NO_MORE_ITEMS && WinError::InvalidFolderName == ERROR_DIRECTORY);
static_assert(WinError::BadRegistryPath == ERROR_BAD_PATHNAME && WinError::KeyDeleted == ERROR_KEY_DELETED);
static_assert(WinError::PrivilegeNotHeld == ERROR_PRIVILEGE_NOT_HELD);
static_assert(WinError::ResourceDataNotFound == ERROR_RESOURCE_DATA_NOT_FOUND);
static_assert(WinError::ResourceTypeNotFound == ERROR_RESOURCE_TYPE_NOT_FOUND);
static_assert(WinError::ResourceNameNotFound == ERROR_RESOURCE_NAME_NOT_FOUND);

// The registry. The predefined keys are pointers, which no constant expression compares: their numbers are repeated by
// the header that defines them, and WindowsRegistry.cpp converts them the same way.
static_assert(sizeof(std::uintptr_t) == sizeof(HKEY));
static_assert(KeyAccess::QueryValue == KEY_QUERY_VALUE && KeyAccess::Notify == KEY_NOTIFY);
static_assert(KeyAccess::Read == KEY_READ && KeyAccess::Write == KEY_WRITE);
static_assert(KeyAccess::AllAccess == KEY_ALL_ACCESS);
static_assert(KeyAccess::Wow64_64Key == KEY_WOW64_64KEY && KeyAccess::Wow64_32Key == KEY_WOW64_32KEY);
static_assert(RegType::None == REG_NONE && RegType::String == REG_SZ && RegType::ExpandString == REG_EXPAND_SZ);
static_assert(RegType::Binary == REG_BINARY && RegType::Dword == REG_DWORD && RegType::Link == REG_LINK);
static_assert(RegType::DwordBigEndian == REG_DWORD_BIG_ENDIAN && RegType::MultiString == REG_MULTI_SZ);
static_assert(RegType::Qword == REG_QWORD);
static_assert(RegNotify::ChangeName == REG_NOTIFY_CHANGE_NAME);
static_assert(RegNotify::ChangeLastSet == REG_NOTIFY_CHANGE_LAST_SET);

// Files.
static_assert(FileAttribute::ReadOnly == FILE_ATTRIBUTE_READONLY && FileAttribute::Hidden == FILE_ATTRIBUTE_HIDDEN);
static_assert(FileAttribute::System == FILE_ATTRIBUTE_SYSTEM && FileAttribute::Folder == FILE_ATTRIBUTE_DIRECTORY);
static_assert(FileAttribute::Archive == FILE_ATTRIBUTE_ARCHIVE && FileAttribute::Normal == FILE_ATTRIBUTE_NORMAL);
static_assert(FileAttribute::ReparsePoint == FILE_ATTRIBUTE_REPARSE_POINT);

// System facts.
static_assert(ProductType::Workstation == VER_NT_WORKSTATION && ProductType::Server == VER_NT_SERVER);
static_assert(ProductType::DomainController == VER_NT_DOMAIN_CONTROLLER);
static_assert(VersionPlatform::Win32s == VER_PLATFORM_WIN32s && VersionPlatform::WindowsNT == VER_PLATFORM_WIN32_NT);
static_assert(VersionPlatform::Windows9x == VER_PLATFORM_WIN32_WINDOWS);
static_assert(LocaleInfo::Language == LOCALE_SLANGUAGE && LocaleInfo::TimeSeparator == LOCALE_STIME);
static_assert(LocaleInfo::AbbreviatedLanguage == LOCALE_SABBREVLANGNAME);
static_assert(LocaleInfo::UserDefault == LOCALE_USER_DEFAULT);
static_assert(Architecture::Intel == PROCESSOR_ARCHITECTURE_INTEL);
static_assert(Architecture::Itanium == PROCESSOR_ARCHITECTURE_IA64);
static_assert(Architecture::Amd64 == PROCESSOR_ARCHITECTURE_AMD64);
static_assert(sizeof(TSystemTime) == sizeof(SYSTEMTIME) && sizeof(TFileTime) == sizeof(FILETIME));
static_assert(offsetof(TSystemTime, DayOfWeek) == offsetof(SYSTEMTIME, wDayOfWeek));
static_assert(offsetof(TSystemTime, Milliseconds) == offsetof(SYSTEMTIME, wMilliseconds));

// The shell, message boxes and waiting.
static_assert(SpecialFolder::Programs == CSIDL_PROGRAMS && SpecialFolder::CommonPrograms == CSIDL_COMMON_PROGRAMS);
static_assert(SpecialFolder::AppData == CSIDL_APPDATA && SpecialFolder::LocalAppData == CSIDL_LOCAL_APPDATA);
static_assert(SpecialFolder::CommonAppData == CSIDL_COMMON_APPDATA && SpecialFolder::Windows == CSIDL_WINDOWS);
static_assert(SpecialFolder::System == CSIDL_SYSTEM && SpecialFolder::ProgramFiles == CSIDL_PROGRAM_FILES);
static_assert(SpecialFolder::Profile == CSIDL_PROFILE && SpecialFolder::ProgramFilesX86 == CSIDL_PROGRAM_FILESX86);
static_assert(MessageStyle::YesNo == MB_YESNO && MessageStyle::IconError == MB_ICONERROR);
static_assert(MessageStyle::IconQuestion == MB_ICONQUESTION && MessageStyle::TaskModal == MB_TASKMODAL);
static_assert(MessageStyle::TopMost == MB_TOPMOST);
static_assert(MessageAnswer::Ok == IDOK && MessageAnswer::Yes == IDYES && MessageAnswer::No == IDNO);
static_assert(WaitForever == INFINITE);

}  // namespace varcolin
