#include "host/RunEnd.h"

#include <gmock/gmock.h>

#include <set>

namespace {

/// The exit code as its rule says it.
int expectedCode(const RunEnd& end) {
    if (end.status == TEMZ_STOPPED || end.endedByUser)
        return 1602;
    if (end.status == TEMZ_OK && !end.incomplete)
        return end.restartNeeded ? 3010 : 0;
    if (end.notElevated)
        return 740;
    return end.restartNeeded ? 3017 : 1603;
}

TEST(RunEndTest, HasItsExitCodeInEveryCombination) {
    std::set<int> codes;
    for (temz_status status = TEMZ_OK; status < TEMZ_STATUS_END_; ++status)
        for (unsigned bits = 0; bits < 16; ++bits) {
            const RunEnd end{status, (bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0,
                             (bits & 8) != 0};
            const int code = exitCodeOf(endingOf(end));
            EXPECT_EQ(code, expectedCode(end)) << status << ' ' << bits;
            codes.insert(code);
        }
    EXPECT_EQ(codes, (std::set{0, 740, 1602, 1603, 3010, 3017}));
}

TEST(RunEndTest, SucceedsOnlyWhenAllIsDone) {
    EXPECT_EQ(endingOf({}), Ending::done);
    EXPECT_EQ(endingOf({TEMZ_OK, false, true, false, false}), Ending::failed);
    EXPECT_EQ(endingOf({TEMZ_OK, false, true, true, false}), Ending::failedWithRestart);
    EXPECT_EQ(endingOf({TEMZ_RUN_FAILED, false, false, true, true}), Ending::notElevated);
}

TEST(ExitCodesTest, HasOneRowForEachEnding) {
    const struct {
        Ending ending;
        int code;
        bool success;
    } endings[] = {
        {Ending::done, 0, true},
        {Ending::restartNeeded, 3010, true},
        {Ending::stoppedByUser, 1602, false},
        {Ending::failed, 1603, false},
        {Ending::failedWithRestart, 3017, false},
        {Ending::otherRunGoesOn, 1618, false},
        {Ending::scriptNotOpened, 1619, false},
        {Ending::scriptNotLoaded, 1620, false},
        {Ending::logNotOpened, 1622, false},
        {Ending::badCommandLine, 1639, false},
        {Ending::notElevated, 740, false},
        {Ending::faultsFound, 1, false},
        {Ending::notChecked, 2, false},
        {Ending::outputNotWritten, 29, false},
        {Ending::folderNotUsable, 161, false},
        {Ending::machineDiffers, 145, false},
    };
    ASSERT_EQ(exitCodes().size(), std::size(endings));
    for (const auto& [ending, code, success] : endings) {
        EXPECT_EQ(exitCodeOf(ending), code);
        EXPECT_EQ(succeeded(ending), success) << code;
    }
}

TEST(ExitCodesTest, SaysWhatEachMeansAndWhatToDo) {
    std::set<int> codes;
    for (const ExitCode& row : exitCodes()) {
        EXPECT_TRUE(codes.insert(row.code).second) << row.code;
        EXPECT_STRNE(row.meaning, L"");
        EXPECT_EQ(*row.nextStep == L'\0', row.code == 0) << row.code;
    }
}

}  // namespace
