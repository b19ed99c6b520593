#include "hostile/GuardedAllocation.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// What the compiler may not see through: it leaves out what it can prove to be wrong.
char* volatile block = nullptr;

const testing::ExitedWithCode damagedHeap(static_cast<int>(damagedHeapStatus));

}  // namespace

TEST(GuardedAllocationTest, WritingBehindABlockEndsTheProgram) {
    for (const size_t size : {1u, 16u, 1000u, 100'000u}) {
        EXPECT_EXIT(
            {
                block = new char[size];
                block[size] = 'x';
                delete[] block;
            },
            damagedHeap, "behind a block");
    }
}

TEST(GuardedAllocationTest, WritingInFrontOfABlockEndsTheProgram) {
    EXPECT_EXIT(
        {
            block = new char[8];
            block[-1] = 'x';
            delete[] block;
        },
        damagedHeap, "in front of it");
}

TEST(GuardedAllocationTest, WritingIntoAReleasedBlockEndsTheProgram) {
    EXPECT_EXIT(
        {
            block = new char[8];
            delete[] block;
            block[3] = 'x';
            checkReleasedBlocks();
        },
        damagedHeap, "into a released block");
}

TEST(GuardedAllocationTest, ReleasingABlockTwiceEndsTheProgram) {
    EXPECT_EXIT(
        {
            block = new char[8];
            delete[] block;
            delete[] block;
        },
        damagedHeap, "released twice");
}

TEST(GuardedAllocationTest, CountsWhatIsLive) {
    const size_t before = liveBlocks();
    const size_t givenOut = givenOutSoFar().bytes;
    block = new char[100];
    EXPECT_EQ(liveBlocks(), before + 1);
    EXPECT_EQ(givenOutSoFar().bytes, givenOut + 100);
    delete[] block;
    EXPECT_EQ(liveBlocks(), before);
    checkReleasedBlocks();
}
