#pragma once

#include <windows.h>

#include "system/CallTable.h"

/// The Win32 calls that read the time or wait.
#define TEMZ_CLOCK_CALLS(CALL) \
    CALL(GetLocalTime)         \
    CALL(GetTickCount)         \
    CALL(Sleep)
TEMZ_CALL_TABLE(ClockCalls, clockCalls, "clock", TEMZ_CLOCK_CALLS, TEMZ_WIN32_CALL)
