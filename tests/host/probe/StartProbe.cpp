// A library with custom actions for tests of the host: one that fails and tells how its host has
// started, and some that make of the moment of the run what a test wants.

#include <windows.h>

#include <objbase.h>
#include <temz/CustomAction.h>

#include <cwchar>
#include <optional>
#include <string>

#include "capi/FailingMalloc.h"

namespace {

HANDLE pressHandled = nullptr;  // the thread on which the host's handler takes the press
HANDLE pressSeen = nullptr;

std::optional<FailingMalloc> failing;

// Is asked before the host's own handler, on the same thread.
BOOL WINAPI notePress(DWORD) {
    pressHandled = OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId());
    SetEvent(pressSeen);
    return FALSE;
}

}  // namespace

extern "C" __declspec(dllexport) uint32_t
    tellStart(CustomActionParams*, wchar_t* message, uint32_t capacity) {
    const bool apartment = CoInitializeEx(nullptr, COINIT_MULTITHREADED) == RPC_E_CHANGED_MODE;
    std::swprintf(message, capacity, L"error mode %u, %ls", GetErrorMode(),
                  apartment ? L"an apartment" : L"no apartment");
    return 1;
}

/// Presses Ctrl+C, and returns when the host has taken it.
extern "C" __declspec(dllexport) uint32_t pressCtrlC(CustomActionParams*, wchar_t*, uint32_t) {
    pressSeen = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    SetConsoleCtrlHandler(&notePress, TRUE);
    GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
    WaitForSingleObject(pressSeen, INFINITE);
    WaitForSingleObject(pressHandled, INFINITE);
    SetConsoleCtrlHandler(&notePress, FALSE);
    CloseHandle(pressHandled);
    CloseHandle(pressSeen);
    return 0;
}

/// The same, but as an action that fails.
extern "C" __declspec(dllexport) uint32_t
    pressCtrlCAndFail(CustomActionParams* params, wchar_t* message, uint32_t capacity) {
    pressCtrlC(params, message, capacity);
    return 1;
}

/// Presses Ctrl+C twice, and never returns.
extern "C" __declspec(dllexport) uint32_t
    pressCtrlCTwice(CustomActionParams* params, wchar_t* message, uint32_t capacity) {
    pressCtrlC(params, message, capacity);
    GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
    Sleep(INFINITE);
    return 0;
}

/// Fails with whether a click into the console's window would mark text.
extern "C" __declspec(dllexport) uint32_t
    tellQuickEdit(CustomActionParams*, wchar_t* message, uint32_t capacity) {
    constexpr DWORD quickEdit = 0x40;
    DWORD mode = 0;
    GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode);
    std::swprintf(message, capacity, L"QuickEdit is %ls", (mode & quickEdit) != 0 ? L"on" : L"off");
    return 1;
}

/// Has one allocation of the host's program fail: that after so many as the environment says. What
/// belongs to no run any more, such as the counting of what was run, has all its memory.
extern "C" __declspec(dllexport) uint32_t
    failOneAllocation(CustomActionParams*, wchar_t*, uint32_t) {
    HMODULE self = nullptr;  // is needed longer than the action takes
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(&failOneAllocation), &self);
    wchar_t number[16] = {};
    GetEnvironmentVariableW(L"TEMZ_TESTS_ALLOCATION", number, 16);
    failing.emplace(std::wcstoul(number, nullptr, 10), 1, GetModuleHandleW(nullptr));
    // The library's own atexit is for its unloading, which comes behind the end of the program.
    using AtExit = int (*(*)(int (*)()))();
    const auto atExit = reinterpret_cast<AtExit>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), "_onexit")));
    atExit([] {
        failing.reset();
        return 0;
    });
    return 0;
}

/// Writes the file "held" into the application's directory, and returns when somebody has deleted
/// it.
extern "C" __declspec(dllexport) uint32_t hold(CustomActionParams* params, wchar_t*, uint32_t) {
    const std::string file = std::string(params->applicationRootDirectory) + "\\held";
    CloseHandle(CreateFileA(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    constexpr DWORD pollInterval = 5;
    constexpr int patience = 6000;  // half a minute
    int polls = 0;
    while (GetFileAttributesA(file.c_str()) != INVALID_FILE_ATTRIBUTES && ++polls < patience)
        Sleep(pollInterval);
    return 0;
}
