#include "system/LocalTime.h"

#include <gtest/gtest.h>

#include "support/FakeCall.h"
#include "system/ClockCalls.h"

namespace {

TEST(LocalTimeTest, ConvertsTheSystemTimeToTheZoneOfTheSystem) {
    const FakeCall<clockCalls, &ClockCalls::GetSystemTime> now(
        [](SYSTEMTIME* utc) { *utc = {2026, 12, 4, 31, 23, 3, 9, 500}; });
    const FakeCall<clockCalls, &ClockCalls::SystemTimeToTzSpecificLocalTime> convert(
        [](auto zone, auto utc, SYSTEMTIME* local) {
            EXPECT_EQ(zone, nullptr);
            EXPECT_EQ(utc->wYear, 2026);
            EXPECT_EQ(utc->wHour, 23);
            *local = {2027, 1, 5, 2, 7, 4, 10, 500};
            SetLastError(ERROR_INVALID_PARAMETER);
            return TRUE;
        });

    const std::optional<LocalTime> time = localTime();

    ASSERT_TRUE(time);
    EXPECT_EQ(time->year, 2027);
    EXPECT_EQ(time->month, 1);
    EXPECT_EQ(time->day, 2);
    EXPECT_EQ(time->hour, 7);
    EXPECT_EQ(time->minute, 4);
    EXPECT_EQ(time->second, 10);
}

TEST(LocalTimeTest, IsNothingWhenTheSystemCannotConvert) {
    const FakeCall<clockCalls, &ClockCalls::SystemTimeToTzSpecificLocalTime> convert(
        [](auto...) { return FALSE; });

    EXPECT_FALSE(localTime());
}

}  // namespace
