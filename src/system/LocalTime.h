#pragma once

#include <optional>

/// A moment in the local time zone: the four-digit year, the month and the day from 1.
struct LocalTime {
    int year;
    int month;
    int day;
    int hour;
    int minute;
    int second;
};

/// The current time, or nothing when the system doesn't tell it.
std::optional<LocalTime> localTime();
