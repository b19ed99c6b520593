#pragma once

#include <windows.h>

#include "system/CallTable.h"

/// The Win32 calls that tell facts of the system.
#define TEMZ_SYSTEM_CALLS(CALL) \
    CALL(GetModuleHandleW)      \
    CALL(GetProcAddress)        \
    CALL(GetVersionExW)
TEMZ_CALL_TABLE(SystemCalls, systemCalls, "system", TEMZ_SYSTEM_CALLS, TEMZ_WIN32_CALL)
