#include "system/LocalTime.h"

#include "system/ClockCalls.h"

// Asks the system and not the C runtime, which would obey the environment variable TZ. A moment has
// a month, so one that has none wasn't told.
std::optional<LocalTime> localTime() {
    SYSTEMTIME now = {};
    clockCalls.GetLocalTime(&now);
    if (now.wMonth == 0)
        return std::nullopt;
    return LocalTime{now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}
