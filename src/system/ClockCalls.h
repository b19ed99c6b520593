#pragma once

#include <windows.h>

/// The Win32 calls that read the time or wait; see FileCalls for the use of such a table.
struct ClockCalls {
    decltype(&::GetSystemTime) GetSystemTime = ::GetSystemTime;
    decltype(&::SystemTimeToTzSpecificLocalTime) SystemTimeToTzSpecificLocalTime =
        ::SystemTimeToTzSpecificLocalTime;
    decltype(&::GetTickCount) GetTickCount = ::GetTickCount;
    decltype(&::Sleep) Sleep = ::Sleep;
};

inline ClockCalls clockCalls;
