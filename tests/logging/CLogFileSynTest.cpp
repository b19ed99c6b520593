#include "logging/CLogFileSyn.h"

#include <gtest/gtest.h>

#include <new>
#include <thread>

#include "support/ClassLayout.h"

namespace {

/// Counts up in two threads, under a lock that is taken `depth` times. Gives the sum.
int countInTwoThreads(CLogSyn& lock, int rounds, int depth) {
    int sum = 0;
    const auto count = [&] {
        for (int round = 0; round < rounds; ++round) {
            for (int level = 0; level < depth; ++level)
                lock.lock();
            const int before = sum;
            std::this_thread::yield();
            sum = before + 1;
            for (int level = 0; level < depth; ++level)
                lock.unlock();
        }
    };
    std::thread other(count);
    count();
    other.join();
    return sum;
}

TEST(CLogFileSynTest, KeepsThreadsApart) {
    CLogFileSyn lock;

    EXPECT_EQ(countInTwoThreads(lock, 1000, 1), 2000);
}

TEST(CLogFileSynTest, OneThreadMayTakeItAgain) {
    CLogFileSyn lock;

    EXPECT_EQ(countInTwoThreads(lock, 1000, 3), 2000);
}

TEST(CLogFileSynTest, HoldsOneSectionBehindItsTableAndGivesItBack) {
    alignas(CLogFileSyn) unsigned char memory[sizeof(CLogFileSyn)] = {};
    const auto& section = memberAt<CRITICAL_SECTION>(memory, 8);
    EXPECT_EQ(sizeof(CLogFileSyn), 8 + sizeof(CRITICAL_SECTION));

    auto* const lock = new (memory) CLogFileSyn;
    EXPECT_NE(section.DebugInfo, nullptr);

    lock->~CLogFileSyn();
    EXPECT_EQ(section.DebugInfo, nullptr);
}

TEST(CLogSynTest, LetsEveryThreadIn) {
    struct Plain : CLogSyn {
    } lock;
    bool entered = false;

    lock.lock();
    std::thread([&] {
        lock.lock();
        entered = true;
    }).join();

    EXPECT_TRUE(entered);
}

TEST(CLogSynTest, HasTwoVirtualOperations) {
    EXPECT_EQ(slotOf(&CLogSyn::lock), 0u);
    EXPECT_EQ(slotOf(&CLogSyn::unlock), 1u);
}

}  // namespace
