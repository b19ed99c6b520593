#include "system/Exhaustion.h"

#include <gtest/gtest.h>

namespace {

const std::wstring text = L"Insufficient memory.";

TEST(InsufficientMemoryTest, OneAfterTheOtherHasTheText) {
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(InsufficientMemory(), text);
}

TEST(InsufficientMemoryTest, SoHaveSeveralAtOnce) {
    const InsufficientMemory first;
    {
        const InsufficientMemory second;
        EXPECT_EQ(first, text);
        EXPECT_EQ(second, text);
    }
    EXPECT_EQ(InsufficientMemory(), text);
}

}  // namespace
