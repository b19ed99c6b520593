#include "host/RunGuard.h"

#include <gmock/gmock.h>

#include <optional>
#include <thread>

#include "SetupTest.h"

using namespace std::chrono_literals;

namespace {

/// Whether a run on another thread may begin; a thread has its guard as often as it wants.
bool mayBegin(std::chrono::seconds patience) {
    bool begun = false;
    std::thread([&] { begun = static_cast<bool>(RunGuard(patience)); }).join();
    return begun;
}

TEST(RunGuardTest, LetsOneRunBeginAtATime) {
    {
        const RunGuard guard(0s);
        EXPECT_TRUE(guard);
        EXPECT_FALSE(mayBegin(0s));
    }
    EXPECT_TRUE(mayBegin(0s));
}

TEST(RunGuardTest, HasTheNextRunWaitForTheEndOfThisOne) {
    std::optional<RunGuard> guard(0s);
    bool begun = false;
    std::thread next([&] { begun = static_cast<bool>(RunGuard(999'999'999s)); });
    guard.reset();
    next.join();
    EXPECT_TRUE(begun);
}

TEST(RunGuardTest, IsNotKeptByARunThatNeverEnded) {
    std::thread([] {
        // As of a process that has crashed, nothing is destroyed.
        alignas(RunGuard) static std::byte memory[sizeof(RunGuard)];
        EXPECT_TRUE(*new (memory) RunGuard(0s));
    }).join();
    EXPECT_TRUE(mayBegin(0s));
}

using RunGuardOfTemzTest = SetupTest;

TEST_F(RunGuardOfTemzTest, IsTheMachines) {
    writeScript("");
    {
        const RunGuard guard(0s);
        EXPECT_EQ(temz(L"install install.xml").exitCode, 1618u);
    }
    EXPECT_EQ(temz(L"install install.xml").exitCode, 0u);
}

}  // namespace
