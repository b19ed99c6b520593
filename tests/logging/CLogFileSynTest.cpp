#include "logging/CLogFileSyn.h"

#include <gtest/gtest.h>

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
