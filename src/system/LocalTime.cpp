#include "system/LocalTime.h"

#include "system/ClockCalls.h"

// Asks the system and not the C runtime, which would obey the environment variable TZ.
std::optional<LocalTime> localTime() {
    SYSTEMTIME utc;
    SYSTEMTIME local;
    clockCalls.GetSystemTime(&utc);
    if (!clockCalls.SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
        return std::nullopt;
    return LocalTime{local.wYear, local.wMonth,  local.wDay,
                     local.wHour, local.wMinute, local.wSecond};
}
