#include "system/LocalTime.h"

#include <gtest/gtest.h>

#include "support/FakeCall.h"
#include "system/ClockCalls.h"

namespace {

TEST(LocalTimeTest, IsThatOfTheSystem) {
    const FakeCall<clockCalls, &ClockCalls::GetLocalTime> now([](SYSTEMTIME* local) {
        *local = {2027, 1, 5, 2, 7, 4, 10, 500};
        SetLastError(ERROR_INVALID_PARAMETER);
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

TEST(LocalTimeTest, IsNothingWhenTheSystemDoesNotTellIt) {
    const FakeCall<clockCalls, &ClockCalls::GetLocalTime> silent([](SYSTEMTIME*) {});

    EXPECT_FALSE(localTime());
}

}  // namespace
