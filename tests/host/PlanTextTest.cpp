#include "host/PlanText.h"

#include <gmock/gmock.h>

#include <regex>

#include "ScriptedPlan.h"
#include "author/SizeText.h"
#include "host/PlanWords.h"

namespace {

TEST(PlanTextTest, ShowsASummaryAndTheTree) {
    EXPECT_EQ(planText(scriptedPlan(), false),
              LR"(install.xml, upgrade, on this machine (Windows 10.0.19045)
1 file replaced; 14 KB on C:; 1 program; a restart is needed for 1 file; 1 vital action fails; the effect of 1 step can't be foreseen

  Feature Main
    Condition OS_BIT E 64                             true (OS_BIT = 64)
      ~ C:\app\a.exe                                  1.3.0, 800 KB -> 1.4.0, 812 KB
      ! C:\app\sync.dll                               at the restart, 1 KB -> 2 KB, held by sync.exe (4312)
    Condition SETTINGS E 0                            false (SETTINGS = 1), 1 file left out
  FileSearch C:\b.dll                                 found, at least 2.0 (B = 1)
    Deleting gone.txt                                 nothing to do
    ? C:\sc.exe create <x>                            started; what it does can't be foreseen
    x Starting service X fails: there is no such service. [error 1060] A run asks here, and ends unless it goes on.
  Fragment                                            only at uninstall, 3 elements left out
)");
}

TEST(PlanTextTest, ColoursLinesOnATerminal) {
    Plan plan;
    plan.steps = {changeOf(TEMZ_CHANGE_FILE_ADDED, 0, L"C:\\a"),
                  stepOf(TEMZ_STEP_GROUP, 0, L"Feature")};

    const std::wstring text = planText(plan, true);

    EXPECT_THAT(text, testing::HasSubstr(L"\n\x1B[32m  + C:\\a"));
    EXPECT_THAT(text, testing::HasSubstr(L"new\x1B[0m\n  Feature\n"));
    EXPECT_THAT(planText(plan, false), testing::Not(testing::HasSubstr(L"\x1B")));
}

TEST(PlanTextTest, KeepsControlCharactersOfAScriptFromTheTerminal) {
    Plan plan;
    plan.steps = {changeOf(TEMZ_CHANGE_VALUE_SET, 0, L"a\x1B[2Jb\r\nc")};
    EXPECT_THAT(planText(plan, false), testing::HasSubstr(L"  + a [2Jb  c\n"));
}

TEST(PlanTextTest, TellsWhatIsNewFromWhatIsReplaced) {
    Plan plan;
    plan.steps = {changeOf(TEMZ_CHANGE_VALUE_SET, 0, L"A", L"", L"1"),
                  changeOf(TEMZ_CHANGE_VALUE_SET, 0, L"B", L"1", L"2"),
                  changeOf(TEMZ_CHANGE_LINK_WRITTEN, 0, L"c.lnk"),
                  changeOf(TEMZ_CHANGE_LINK_WRITTEN, 0, L"d.lnk", L"1 KB")};
    plan.steps[2].detail = plan.steps[3].detail = L"x.exe";
    std::wstring lines = planText(plan, false);
    lines = std::regex_replace(lines.substr(lines.find(L"\n\n")), std::wregex(L"  +"), L" ");
    EXPECT_EQ(lines,
              L"\n\n + A 1\n ~ B 1 -> 2\n + c.lnk shortcut to x.exe\n"
              L" ~ d.lnk shortcut to x.exe, in place of 1 KB\n");
}

/// The tree of steps, with single blanks.
std::wstring treeOf(std::vector<Step> steps) {
    Plan plan;
    plan.steps = std::move(steps);
    const std::wstring text = planText(plan, false);
    return std::regex_replace(text.substr(text.find(L"\n\n") + 2), std::wregex(L"  +"), L" ");
}

TEST(PlanTextTest, ShowsACautionAsWhatComesToNothing) {
    Step caution = stepOf(TEMZ_STEP_ACTION, 0, L"Caution", L"Read me");
    caution.code = TEMZ_ACTION_CAUTION;
    EXPECT_EQ(treeOf({stepOf(TEMZ_STEP_ELEMENT, 0, L"Caution"), caution}), L" Caution: Read me\n");
}

TEST(PlanTextTest, LeavesOutStepsOfAKindThatItDoesNotKnow) {
    EXPECT_EQ(treeOf({stepOf(99, 0, L"File"), stepOf(TEMZ_STEP_GROUP, 0, L"Feature")}),
              L" Feature\n");
}

TEST(PlanTextTest, ShowsALinkOfWhichTheTargetIsNotKnown) {
    EXPECT_EQ(treeOf({changeOf(TEMZ_CHANGE_LINK_WRITTEN, 0, L"c.lnk")}), L" + c.lnk shortcut\n");
}

TEST(PlanTextTest, ShowsOfAFailureWhatThereIs) {
    const struct {
        uint32_t code;
        const wchar_t* what;
        const wchar_t* why;
        uint32_t systemError;
        const wchar_t* text;
    } failures[] = {
        {TEMZ_ACTION_COPY_FILE, L"Copying a", L"", 5, L" x Copying a fails. [error 5] "},
        {TEMZ_ACTION_COPY_FILE, L"Copying a", L"No.", 0, L" x Copying a fails: No. "},
        {TEMZ_ERROR_MESSAGE, L"It is wrong.", L"", 0, L" x It is wrong. "},
        {TEMZ_ERROR_MESSAGE, L"", L"", 0, L" x . "},
    };
    for (const auto& [code, what, why, systemError, text] : failures) {
        Step step = stepOf(TEMZ_STEP_FAILURE, 0, L"File");
        step.failure.code = code;
        step.failure.what = what;
        step.failure.why = why;
        step.failure.systemError = systemError;
        step.fate = TEMZ_FAILURE_ENDS_RUN;
        EXPECT_EQ(treeOf({step}), text + std::wstring(L"A run ends here.\n"));
    }
}

TEST(PlanTextTest, SaysThatNothingChanges) {
    EXPECT_THAT(planText(Plan(), false), testing::EndsWith(L"\nnothing changes\n"));
}

TEST(PlanTextTest, NamesWhatIsAssumed) {
    Plan plan;
    plan.header.assumptions = {L"OS_BIT = 32", L"A = b"};
    EXPECT_THAT(planText(plan, false), testing::HasSubstr(L"), assuming OS_BIT = 32, A = b\n"));
}

TEST(PlanWordsTest, HasARowForEachChangeInItsPlace) {
    for (uint32_t code = TEMZ_CHANGE_FILE_ADDED; code < TEMZ_CHANGE_END_; ++code)
        EXPECT_EQ(changeWords()[code - 1].code, code);
}

TEST(PlanWordsTest, TellsSizesInTheUnitThatFits) {
    const struct {
        uint64_t bytes;
        const wchar_t* text;
    } sizes[] = {{0, L"0 bytes"},
                 {1, L"1 byte"},
                 {1023, L"1023 bytes"},
                 {1024, L"1 KB"},
                 {999 * 1024, L"999 KB"},
                 {1023 * 1024, L"1.0 MB"},
                 {43201331, L"41.2 MB"},
                 {uint64_t{200} << 20, L"200 MB"},
                 {uint64_t{3} << 30, L"3.0 GB"},
                 {uint64_t{5000} << 40, L"5000 TB"}};
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(sizeText(bytes), text);
}

// A sign that the page or the terminal doesn't know would be shown like what changes nothing.
TEST(PlanWordsTest, KnowsTheSignOfEachChange) {
    for (const ChangeWords& row : changeWords())
        EXPECT_NE(findSign(row.symbol), nullptr) << row.word;
    for (const wchar_t symbol : {L'?', L'x'})
        EXPECT_NE(findSign(symbol), nullptr);
    EXPECT_EQ(findSign(L' '), nullptr);
}

TEST(PlanSummaryTest, CountsWhatNewFilesNeedOnEachDrive) {
    Plan plan;
    const auto add = [&plan](uint32_t code, const wchar_t* object, uint64_t bytes,
                             uint64_t bytesBefore) {
        Step step = changeOf(code, 0, object);
        step.bytes = bytes;
        step.bytesBefore = bytesBefore;
        plan.steps.push_back(step);
    };
    add(TEMZ_CHANGE_FILE_ADDED, L"C:\\a", 10, 0);
    add(TEMZ_CHANGE_FILE_REPLACED, L"C:\\b", 7, 5);
    add(TEMZ_CHANGE_FILE_REPLACED, L"C:\\c", 5, 7);
    add(TEMZ_CHANGE_FILE_REMOVED, L"C:\\d", 0, 100);
    add(TEMZ_CHANGE_FILE_AT_RESTART, L"D:\\e", 8, 6);
    add(TEMZ_CHANGE_FILE_ADDED, L"\\\\server\\share\\f", 1, 0);

    const PlanSummary summary = summaryOf(plan);

    EXPECT_THAT(summary.bytesNeeded,
                testing::ElementsAre(testing::Pair(L"C:", 12u), testing::Pair(L"D:", 8u),
                                     testing::Pair(L"\\\\server\\share", 1u)));
    EXPECT_EQ(summary.filesReplaced, 2u);
    EXPECT_TRUE(wouldSucceed(summary));
}

TEST(PlanSummaryTest, SucceedsUnlessAVitalActionSurelyFails) {
    Plan plan;
    Step failure = stepOf(TEMZ_STEP_FAILURE, 0, L"File");
    const auto succeeds = [&](uint32_t fate, bool uncertain) {
        failure.fate = fate;
        failure.uncertain = uncertain;
        plan.steps = {failure};
        return wouldSucceed(summaryOf(plan));
    };
    EXPECT_FALSE(succeeds(TEMZ_FAILURE_VITAL, false));
    EXPECT_TRUE(succeeds(TEMZ_FAILURE_VITAL, true));
    EXPECT_TRUE(succeeds(TEMZ_FAILURE_NOT_VITAL, false));
    EXPECT_FALSE(succeeds(TEMZ_FAILURE_ENDS_RUN, false));
    EXPECT_FALSE(succeeds(TEMZ_FAILURE_ENDS_RUN, true));
}

TEST(PlanSummaryTest, SaysThatARunEndsUnaskedWhateverComesBehindThat) {
    Plan plan;
    Step failure = stepOf(TEMZ_STEP_FAILURE, 0, L"File");
    failure.fate = TEMZ_FAILURE_ENDS_RUN;
    plan.steps = {failure, failure};
    failure.fate = TEMZ_FAILURE_NOT_VITAL;
    plan.steps.push_back(failure);

    EXPECT_TRUE(summaryOf(plan).endsUnasked);
    EXPECT_THAT(planText(plan, false),
                testing::HasSubstr(L"a run fails and ends before its end; 1 action fails that "
                                   L"isn't vital"));
}

}  // namespace
