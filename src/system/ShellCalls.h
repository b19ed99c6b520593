#pragma once

#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <string_view>

#include "system/CallTable.h"
#include "system/SystemLibrary.h"

// Few scripts need them, and they take as long to load as all that a short run does.
inline constinit SystemLibrary shellLibrary(L"shell32.dll");
inline constinit SystemLibrary componentLibrary(L"ole32.dll");

/// Which of them has a function: those of COM begin alike.
constexpr SystemLibrary& shellLibraryOf(std::string_view function) {
    return function.starts_with("Co") ? componentLibrary : shellLibrary;
}

// NOLINTNEXTLINE(bugprone-macro-parentheses): a name in parentheses declares nothing.
#define TEMZ_SHELL_CALL(name) decltype(&::name) name = callSystem<shellLibraryOf(#name), #name>;

/// The Win32 calls of the shell operations and of what they need of COM.
#define TEMZ_SHELL_CALLS(CALL)    \
    CALL(SHGetSpecialFolderPathW) \
    CALL(SHChangeNotify)          \
    CALL(ShellExecuteExW)         \
    CALL(CoInitialize)            \
    CALL(CoUninitialize)          \
    CALL(CoCreateInstance)
TEMZ_CALL_TABLE(ShellCalls, shellCalls, "shell", TEMZ_SHELL_CALLS, TEMZ_SHELL_CALL)
