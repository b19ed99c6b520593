#include "author/check/FindingKinds.h"

#include <gtest/gtest.h>

#include <cwchar>

TEST(FindingKinds, StandInOrderOfTheirCodesWhichAreTZAndThreeDigits) {
    const wchar_t* before = L"TZ100";
    for (const FindingKind& kind : findingKinds()) {
        EXPECT_LT(wcscmp(before, kind.code), 0) << kind.code;
        EXPECT_EQ(wcslen(kind.code), 5U) << kind.code;
        before = kind.code;
    }
}

TEST(FindingKinds, OnlyAnErrorEndsARun) {
    for (const FindingKind& kind : findingKinds())
        EXPECT_TRUE(kind.severity == Severity::error || !kind.endsRun) << kind.code;
}

TEST(FindingKinds, TellMeaningAndRemedyInSentences) {
    for (const FindingKind& kind : findingKinds()) {
        EXPECT_EQ(kind.meaning[wcslen(kind.meaning) - 1], L'.') << kind.code;
        EXPECT_EQ(kind.remedy[wcslen(kind.remedy) - 1], L'.') << kind.code;
    }
}
