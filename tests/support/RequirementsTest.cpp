#include "support/Requirements.h"

#include <gtest/gtest-spi.h>
#include <windows.h>

#include <functional>

#include "support/TestFolder.h"

namespace {

constexpr wchar_t withoutWine[] = L"TEMZ_TESTS_WITHOUT_WINE";

/// Makes it look as if there were Wine, or none, for the life of the object.
class Pretence {
public:
    explicit Pretence(const wchar_t* value) {
        if (GetEnvironmentVariableW(withoutWine, before, MAX_PATH) == 0)
            wasThere = false;
        SetEnvironmentVariableW(withoutWine, value);
    }
    ~Pretence() { SetEnvironmentVariableW(withoutWine, wasThere ? before : nullptr); }

private:
    wchar_t before[MAX_PATH] = L"";
    bool wasThere = true;
};

TEST(RunsUnderWineTest, TellsWineFromWindows) {
    const Pretence none(nullptr);
    const bool wineSaysSo = GetEnvironmentVariableW(L"WINEHOMEDIR", nullptr, 0) != 0;

    EXPECT_EQ(runsUnderWine(), wineSaysSo);
}

TEST(RunsUnderWineTest, IsNeverSoWhenToldOtherwise) {
    const Pretence windows(L"1");

    EXPECT_FALSE(runsUnderWine());
}

/// A test that needs something, in a test: how it ends.
testing::TestPartResult outcomeOf(const std::function<void()>& test) {
    testing::TestPartResultArray results;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
        test();
    }
    return results.GetTestPartResult(0);
}

TEST(RequirementsTest, SkipTheRestOfATestAndSayWhy) {
    const Pretence windows(L"1");
    const testing::TestPartResult outcome = outcomeOf([] {
        REQUIRES_WINE("a reason");
        FAIL() << "went on";
    });

    EXPECT_TRUE(outcome.skipped());
    EXPECT_STREQ(outcome.message(), "Needs Wine: a reason");
}

TEST(RequirementsTest, NameTheCodePagesThatATestIsMadeFor) {
    EXPECT_TRUE(isActiveCodePage({1, GetACP()}));
    const testing::TestPartResult outcome = outcomeOf([] {
        REQUIRES_CODE_PAGE(1, 2);
        FAIL() << "went on";
    });

    EXPECT_TRUE(outcome.skipped());
    EXPECT_STREQ(outcome.message(), "Needs one of the code pages 1, 2");
}

TEST(RequirementsTest, LetATestGoOnWhereTheyAreMet) {
    const testing::TestPartResult outcome = outcomeOf([] {
        REQUIRES_CODE_PAGE(1, GetACP());
        FAIL() << "went on";
    });

    EXPECT_STREQ(outcome.message(), "Failed\nwent on");
}

}  // namespace
