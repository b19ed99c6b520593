#pragma once

#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include "system/CallTable.h"

/// The Win32 calls of the shell operations and of what they need of COM.
#define TEMZ_SHELL_CALLS(CALL)    \
    CALL(SHGetSpecialFolderPathW) \
    CALL(SHChangeNotify)          \
    CALL(ShellExecuteExW)         \
    CALL(CoInitialize)            \
    CALL(CoUninitialize)          \
    CALL(CoCreateInstance)
TEMZ_CALL_TABLE(ShellCalls, shellCalls, "shell", TEMZ_SHELL_CALLS, TEMZ_WIN32_CALL)
