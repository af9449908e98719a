// The few Windows functions that the host itself calls, declared here so that it needs no Windows header. Texts are
// UTF-16; a Windows Boolean is 0 for false.
#pragma once

#include <cstdint>

namespace varcolin::host {

using TSystemHandle = void*;

inline constexpr std::uint32_t StandardOutput = static_cast<std::uint32_t>(-11);
inline constexpr std::uint32_t StandardError = static_cast<std::uint32_t>(-12);

struct TCoordinates {
  std::int16_t X;
  std::int16_t Y;
};

/// Windows: CONSOLE_SCREEN_BUFFER_INFO.
struct TScreenBufferInfo {
  TCoordinates Size;
  TCoordinates Cursor;
  std::uint16_t Attributes;
  std::int16_t Left;
  std::int16_t Top;
  std::int16_t Right;
  std::int16_t Bottom;
  TCoordinates MaximumSize;
};
static_assert(sizeof(TScreenBufferInfo) == 22);

/// Windows: ICONINFO. Both bitmaps belong to whoever asked.
struct TIconParts {
  int IsIcon;
  std::uint32_t HotspotX;
  std::uint32_t HotspotY;
  TSystemHandle Mask;
  TSystemHandle Colours;  ///< null for a black and white icon: the mask then has the colours below it
};
static_assert(sizeof(TIconParts) == 12 + 2 * sizeof(void*));

/// Windows: BITMAP.
struct TBitmapFacts {
  std::int32_t Type;
  std::int32_t Width;
  std::int32_t Height;
  std::int32_t RowSize;
  std::uint16_t Planes;
  std::uint16_t BitCount;
  void* Bits;
};

/// Windows: BITMAPINFOHEADER.
struct TBitmapHeader {
  std::uint32_t Size;
  std::int32_t Width;
  std::int32_t Height;  ///< negative: the rows run from the top
  std::uint16_t Planes;
  std::uint16_t BitCount;
  std::uint32_t Compression;
  std::uint32_t ImageSize;
  std::int32_t PixelsPerMetreX;
  std::int32_t PixelsPerMetreY;
  std::uint32_t ColoursUsed;
  std::uint32_t ColoursImportant;
};
static_assert(sizeof(TBitmapHeader) == 40);

extern "C" {
__declspec(dllimport) TSystemHandle __stdcall GetStdHandle(std::uint32_t AStream);
__declspec(dllimport) int __stdcall GetConsoleMode(TSystemHandle AConsole, std::uint32_t* AMode);
__declspec(dllimport) int __stdcall GetConsoleScreenBufferInfo(TSystemHandle AConsole, TScreenBufferInfo* AInfo);
__declspec(dllimport) int __stdcall SetConsoleCtrlHandler(int(__stdcall* AHandler)(std::uint32_t), int AAdd);
__declspec(dllimport) int __stdcall WriteConsoleW(TSystemHandle AConsole, const void* AText, std::uint32_t ALength,
                                                  std::uint32_t* AWritten, void* AReserved);
__declspec(dllimport) int __stdcall WriteFile(TSystemHandle AFile, const void* AData, std::uint32_t ALength,
                                              std::uint32_t* AWritten, void* AOverlapped);
__declspec(dllimport) std::uint32_t __stdcall GetLastError();
__declspec(dllimport) wchar_t* __stdcall GetCommandLineW();
__declspec(dllimport) wchar_t** __stdcall CommandLineToArgvW(const wchar_t* ALine, int* ACount);
__declspec(dllimport) void* __stdcall LocalFree(void* AMemory);
__declspec(dllimport) void* __stdcall LoadLibraryW(const wchar_t* APath);
__declspec(dllimport) int __stdcall FreeLibrary(void* AModule);
__declspec(dllimport) void* __stdcall GetProcAddress(void* AModule, const char* AName);
__declspec(dllimport) std::uint32_t __stdcall GetModuleFileNameW(void* AModule, wchar_t* APath, std::uint32_t ASize);
__declspec(dllimport) int __stdcall GetWindowTextW(void* AWindow, char16_t* AText, int ASize);
__declspec(dllimport) TSystemHandle __stdcall ImageList_GetIcon(TSystemHandle AList, int AIndex, unsigned AStyle);
__declspec(dllimport) int __stdcall GetIconInfo(TSystemHandle AIcon, TIconParts* AParts);
__declspec(dllimport) int __stdcall DestroyIcon(TSystemHandle AIcon);
__declspec(dllimport) TSystemHandle __stdcall CreateCompatibleDC(TSystemHandle AContext);
__declspec(dllimport) int __stdcall DeleteDC(TSystemHandle AContext);
__declspec(dllimport) int __stdcall GetObjectW(TSystemHandle AObject, int ASize, void* AFacts);
__declspec(dllimport) int __stdcall DeleteObject(TSystemHandle AObject);
__declspec(dllimport) int __stdcall GetDIBits(TSystemHandle AContext, TSystemHandle ABitmap, unsigned AFirst,
                                              unsigned ACount, void* ABits, TBitmapHeader* AHeader, unsigned AUsage);
__declspec(dllimport) char16_t* __stdcall SysAllocStringLen(const char16_t* AText, unsigned ALength);
__declspec(dllimport) void __stdcall SysFreeString(char16_t* AText);
__declspec(dllimport) unsigned __stdcall SysStringLen(char16_t* AText);
}

}  // namespace varcolin::host
