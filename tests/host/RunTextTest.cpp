#include "host/RunText.h"

#include <gmock/gmock.h>

namespace {

Failure copyFailure() {
    Failure failure;
    failure.code = TEMZ_ACTION_COPY_FILE;
    failure.systemError = 32;
    failure.what = L"Copying sync.dll";
    failure.why = L"the file is in use by sync.exe (4312)";
    failure.source = L"C:\\setup\\sync.dll";
    failure.target = L"C:\\app\\sync.dll";
    failure.advice = L"Close the program.";
    return failure;
}

TEST(FailureTextTest, SaysWhatWhyWhereAndWhatToDo) {
    EXPECT_EQ(failureText(copyFailure()),
              L"Copying sync.dll failed: the file is in use by sync.exe (4312). [error 32]\n"
              L"      from C:\\setup\\sync.dll to C:\\app\\sync.dll\n"
              L"      Close the program.");
}

TEST(FailureTextTest, LeavesOutWhatThereIsNot) {
    Failure failure = copyFailure();
    failure.source.clear();
    EXPECT_EQ(failureText(failure),
              L"Copying sync.dll failed: the file is in use by sync.exe (4312). [error 32]\n"
              L"      at C:\\app\\sync.dll\n"
              L"      Close the program.");
    failure.target.clear();
    failure.advice.clear();
    failure.systemError = 0;
    failure.why = L"No licence.";
    EXPECT_EQ(failureText(failure), L"Copying sync.dll failed: No licence.");
    failure.why.clear();
    EXPECT_EQ(failureText(failure), L"Copying sync.dll failed.");
}

TEST(FailureTextTest, IsTheMessageWhereNoActionFailed) {
    Failure failure;
    failure.code = TEMZ_ERROR_MESSAGE;
    failure.what = L"[X] mismatch.";
    EXPECT_EQ(failureText(failure), L"[X] mismatch.");
}

RunSummary ended(Ending ending, unsigned done, unsigned total = 0) {
    RunSummary summary;
    summary.ending = ending;
    summary.actions = done + 1;
    summary.done = done;
    summary.total = total;
    return summary;
}

TEST(SummaryTextTest, SaysThatNothingWasDoneWhereTheRunWasEndedBeforeItBegan) {
    RunSummary summary = ended(Ending::stoppedByUser, 0);
    summary.reason = L"The wait for another run was ended.";
    EXPECT_EQ(summaryText(summary, L""), L"Nothing was done (1602).");
}

TEST(SummaryTextTest, SaysWhatWasDone) {
    const struct {
        Ending ending;
        unsigned done;
        unsigned total;
        const wchar_t* text;
    } ends[] = {
        {Ending::done, 1, 0, L"Done: 1 action."},
        {Ending::done, 14, 0, L"Done: 14 actions."},
        {Ending::restartNeeded, 2, 0, L"Done: 2 actions."},
        {Ending::failed, 9, 14,
         L"Failed after 9 of 14 actions (1603). What was done before stays."},
        {Ending::failed, 9, 0, L"Failed after 9 actions (1603). What was done before stays."},
        {Ending::failed, 9, 3, L"Failed after 9 actions (1603). What was done before stays."},
        {Ending::failedWithRestart, 1, 0,
         L"Failed after 1 action (3017). What was done before stays."},
        {Ending::notElevated, 0, 0, L"Failed after 0 actions (740). What was done before stays."},
        {Ending::stoppedByUser, 3, 0,
         L"Ended by the user after 3 actions (1602). What was done before stays."},
    };
    for (const auto& [ending, done, total, text] : ends)
        EXPECT_EQ(summaryText(ended(ending, done, total), L""), text);
}

TEST(SummaryTextTest, TellsTheEndOfTheSessionFromTheUsersWish) {
    RunSummary summary = ended(Ending::stoppedByUser, 3);
    summary.sessionEnded = true;

    EXPECT_EQ(summaryText(summary, L""),
              L"Ended with the session after 3 actions (1602). What was done before stays.");
}

TEST(SummaryTextTest, SaysBeforeWhatTheUserHasStopped) {
    RunSummary summary = ended(Ending::stoppedByUser, 3);
    summary.stoppedAt = L"Copying b";

    EXPECT_EQ(summaryText(summary, L""),
              L"Stopped before Copying b, after 3 actions (1602). What was done before stays.");
}

TEST(SummaryTextTest, SaysWhatIsLeftOutWhatWaitsAndWhereTheLogIs) {
    RunSummary summary = ended(Ending::restartNeeded, 3);
    summary.leftOut = {L"Copying a (why)", L"Copying b (why)"};
    summary.waiting = {L"C:\\c", L"C:\\d"};

    EXPECT_EQ(summaryText(summary, L"C:\\x.log"),
              L"Done: 3 actions. Left out: Copying a (why); Copying b (why). Until the machine is "
              L"restarted (Restart, not Shut down) these wait: C:\\c; C:\\d. The log: C:\\x.log");
}

}  // namespace
