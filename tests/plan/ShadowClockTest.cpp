#include "plan/ShadowClock.h"

#include <gtest/gtest.h>

#include "plan/Rehearsal.h"
#include "support/FakeCall.h"

namespace {

class NoListener final : public ChangeListener {
    void planned(const Change&) override {}
};

TEST(ShadowClock, GoesOnByWhatIsSlept) {
    const FakeCall<clockCalls, &ClockCalls::GetTickCount> tick([] { return DWORD{100}; });
    const FakeCall<clockCalls, &ClockCalls::Sleep> sleep([](DWORD) { FAIL() << "slept"; });
    NoListener listener;
    Rehearsal rehearsal(listener);
    const CallWrapper<Rehearsal> wrapper(rehearsal);
    SetLastError(ERROR_INVALID_DATA);

    clockCalls.Sleep(1500);

    EXPECT_EQ(clockCalls.GetTickCount(), 1600u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_DATA});
}

}  // namespace
