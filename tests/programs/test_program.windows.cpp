// A program for the tests to start. It can also uninstall itself as old installers do: by a copy of itself.
//
//   test_program run MILLISECONDS [EXITCODE]
//   test_program window TITLE MILLISECONDS     shows a window
//   test_program handover KEY MILLISECONDS     starts its copy %TEMP%\Au_.exe with "finish KEY MILLISECONDS" and ends
//   test_program finish KEY MILLISECONDS       waits, then removes the uninstall key KEY of this user
//
// Exit code 64 for anything else.
#include <cstdlib>
#include <string>

// Wants the window functions, which a lean windows.h has.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace {

constexpr int WrongUsage = 64;

int Run(const wchar_t* ATime, int AExitCode) {
  Sleep(std::wcstoul(ATime, nullptr, 10));
  return AExitCode;
}

int ShowWindowFor(const wchar_t* ATitle, const wchar_t* ATime) {
  const HWND window = CreateWindowW(L"STATIC", ATitle, WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 50, 300, 100, nullptr,
                                    nullptr, GetModuleHandleW(nullptr), nullptr);
  if (window == nullptr) return 1;
  const UINT_PTR timer = SetTimer(nullptr, 0, std::wcstoul(ATime, nullptr, 10), nullptr);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (message.message == WM_TIMER && message.wParam == timer && message.hwnd == nullptr) break;
    DispatchMessageW(&message);
  }
  DestroyWindow(window);
  return 0;
}

int HandOver(const wchar_t* AKey, const wchar_t* ATime) {
  wchar_t self[MAX_PATH] = L"";
  wchar_t folder[MAX_PATH] = L"";
  GetModuleFileNameW(nullptr, self, MAX_PATH);
  GetTempPathW(MAX_PATH, folder);
  const std::wstring copy = std::wstring(folder) + L"Au_.exe";
  if (!CopyFileW(self, copy.c_str(), FALSE)) return 1;
  std::wstring command = L"\"" + copy + L"\" finish \"" + AKey + L"\" " + ATime;
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
    return 1;
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return 0;
}

int Finish(const wchar_t* AKey, const wchar_t* ATime) {
  Sleep(std::wcstoul(ATime, nullptr, 10));
  const std::wstring path = std::wstring(L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\") + AKey;
  return RegDeleteKeyW(HKEY_CURRENT_USER, path.c_str()) == ERROR_SUCCESS ? 0 : 1;
}

}  // namespace

int wmain(int ACount, wchar_t** AArguments) {
  const std::wstring verb = ACount > 1 ? AArguments[1] : L"";
  if (verb == L"run" && ACount == 3) return Run(AArguments[2], 0);
  if (verb == L"run" && ACount == 4)
    return Run(AArguments[2], static_cast<int>(std::wcstol(AArguments[3], nullptr, 10)));
  if (verb == L"window" && ACount == 4) return ShowWindowFor(AArguments[2], AArguments[3]);
  if (verb == L"handover" && ACount == 4) return HandOver(AArguments[2], AArguments[3]);
  if (verb == L"finish" && ACount == 4) return Finish(AArguments[2], AArguments[3]);
  return WrongUsage;
}
