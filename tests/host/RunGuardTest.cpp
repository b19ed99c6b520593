#include "host/RunGuard.h"

#include <gmock/gmock.h>

#include <optional>
#include <thread>

#include "SetupTest.h"

using namespace std::chrono_literals;

namespace {

/// Whether a run on another thread may begin; a thread has its guard as often as it wants.
bool mayBegin() {
    bool begun = false;
    std::thread([&] { begun = static_cast<bool>(RunGuard()); }).join();
    return begun;
}

HandlePtr makeEvent(bool set) {
    return HandlePtr(CreateEventW(nullptr, TRUE, set, nullptr));
}

TEST(RunGuardTest, LetsOneRunBeginAtATime) {
    {
        const RunGuard guard;
        EXPECT_TRUE(guard);
        EXPECT_FALSE(mayBegin());
    }
    EXPECT_TRUE(mayBegin());
}

TEST(RunGuardTest, HasTheNextRunWaitForTheEndOfThisOne) {
    std::optional<RunGuard> guard(std::in_place);
    const HandlePtr tried = makeEvent(false);
    bool begun = false;
    std::thread next([&] {
        RunGuard nextGuard;
        SetEvent(tried.get());
        nextGuard.wait(999'999'999s, makeEvent(false).get());
        begun = static_cast<bool>(nextGuard);
    });
    WaitForSingleObject(tried.get(), INFINITE);
    guard.reset();
    next.join();
    EXPECT_TRUE(begun);
}

TEST(RunGuardTest, WaitsNoLongerThanItIsTo) {
    const RunGuard guard;
    bool begun = true;
    const auto waitFor = [&begun](std::chrono::seconds patience, bool ended) {
        std::thread([&] {
            RunGuard nextGuard;
            nextGuard.wait(patience, makeEvent(ended).get());
            begun = static_cast<bool>(nextGuard);
        }).join();
    };
    waitFor(0s, false);
    EXPECT_FALSE(begun);
    begun = true;
    waitFor(999'999'999s, true);
    EXPECT_FALSE(begun);
}

TEST(RunGuardTest, HasBegunOnlyWhereNobodyWantsItsEnd) {
    RunGuard guard;
    const HandlePtr ended = makeEvent(true);
    guard.wait(0s, ended.get());
    EXPECT_FALSE(guard);
}

TEST(RunGuardTest, IsNotKeptByARunThatNeverEnded) {
    std::thread([] {
        // As of a process that has crashed, nothing is destroyed.
        alignas(RunGuard) static std::byte memory[sizeof(RunGuard)];
        EXPECT_TRUE(*new (memory) RunGuard);
    }).join();
    EXPECT_TRUE(mayBegin());
}

TEST(RunGuardTest, BeginsWhereTheRunThatItWaitsForNeverEnds) {
    const HandlePtr held = makeEvent(false);
    const HandlePtr crash = makeEvent(false);
    std::thread crashing([&] {
        alignas(RunGuard) static std::byte memory[sizeof(RunGuard)];
        EXPECT_TRUE(*new (memory) RunGuard);
        SetEvent(held.get());
        WaitForSingleObject(crash.get(), INFINITE);
    });
    WaitForSingleObject(held.get(), INFINITE);
    RunGuard next;
    EXPECT_FALSE(next);
    SetEvent(crash.get());
    next.wait(999'999'999s, makeEvent(false).get());
    EXPECT_TRUE(next);
    crashing.join();
}

using RunGuardOfTemzTest = SetupTest;

TEST_F(RunGuardOfTemzTest, IsTheMachines) {
    writeScript("");
    {
        const RunGuard guard;
        EXPECT_EQ(temz(L"install install.xml").exitCode, 1618u);
    }
    EXPECT_EQ(temz(L"install install.xml").exitCode, 0u);
}

}  // namespace
