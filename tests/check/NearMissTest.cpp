#include "author/check/NearMiss.h"

#include <gtest/gtest.h>

#include <vector>

TEST(NearMiss, SuggestsNothingAnyMoreOnceItsTimeIsSpent) {
    const std::wstring other(64, L'x');
    const std::vector<std::wstring_view> candidates(1000, other);
    const std::wstring word(64, L'y');
    const std::vector<std::wstring_view> near = {L"lantern"};
    NearMiss nearMiss;
    EXPECT_EQ(nearMiss.find(L"lanterm", near), L"lantern");
    EXPECT_EQ(nearMiss.findAlike(L"lanterns_of", near), L"lantern");
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(nearMiss.find(word, candidates), L"");
    EXPECT_EQ(nearMiss.find(L"lanterm", near), L"");
    EXPECT_EQ(nearMiss.findAlike(L"lanterns_of", near), L"");
}
