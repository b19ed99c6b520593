#pragma once

#include <windows.h>

#include <tlhelp32.h>

#include "system/CallTable.h"

/// The Win32 calls of the process operations.
#define TEMZ_PROCESS_CALLS(CALL)   \
    CALL(CreateToolhelp32Snapshot) \
    CALL(Process32FirstW)          \
    CALL(Process32NextW)           \
    CALL(Module32FirstW)           \
    CALL(OpenProcess)              \
    CALL(TerminateProcess)         \
    CALL(WaitForSingleObject)      \
    CALL(CloseHandle)              \
    CALL(FormatMessageW)           \
    CALL(FormatMessageA)           \
    CALL(LocalFree)
TEMZ_CALL_TABLE(ProcessCalls, processCalls, "process", TEMZ_PROCESS_CALLS, TEMZ_WIN32_CALL)
