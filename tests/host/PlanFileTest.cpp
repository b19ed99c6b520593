#include "host/PlanFile.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "host/Diagnosis.h"
#include "support/TestFolder.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace {

const PlannedCall makeDirectory{L"file", L"CreateDirectoryW", {L"C:\\app"}};
const PlannedCall copyA{L"file", L"CopyFileW", {L"a", L"C:\\app\\a", L"0"}};
const PlannedCall copyB{L"file", L"CopyFileW", {L"b", L"C:\\app\\b", L"0"}};

/// Two files, each with the making of its directory.
Plan planOfTwo() {
    Plan plan;
    plan.header.scriptHash = L"0a1b";
    plan.header.mode = L"install";
    plan.elements = {{0, L"File", 3}, {2, L"File", 4}};
    plan.calls = {makeDirectory, copyA, makeDirectory, copyB};
    return plan;
}

/// A plan whose first copy fails.
Plan planWithFailure() {
    Plan plan = planOfTwo();
    plan.calls[1].result = 5;
    return plan;
}

PlanHold holdOf(const Plan& plan) {
    return PlanHold({plan.header.scriptHash, plan.header.mode, plan.calls, plan.elements});
}

class PlanFileTest : public testing::Test {
protected:
    std::optional<KeptPlan> read(std::string_view text) {
        return readPlan(folder.write(L"plan", text), problem);
    }

    const TestFolder folder;
    std::wstring problem;
};

TEST_F(PlanFileTest, KeepsCallsInALineEach) {
    ASSERT_EQ(keepPlan(planWithFailure(), folder.path(L"plan")), L"");
    EXPECT_EQ(readFile(folder.path(L"plan")),
              "temz-plan\t2\r\nsha256\t0a1b\r\nmode\tinstall\r\nelement\tFile\t3\r\n"
              "call\t\tfile\tCreateDirectoryW\tC:\\\\app\r\n"
              "call\t5\tfile\tCopyFileW\ta\tC:\\\\app\\\\a\t0\r\n"
              "element\tFile\t4\r\ncall\t\tfile\tCreateDirectoryW\tC:\\\\app\r\n"
              "call\t\tfile\tCopyFileW\tb\tC:\\\\app\\\\b\t0\r\nend\r\n");
}

TEST_F(PlanFileTest, GivesBackWhatItHasKept) {
    Plan plan = planOfTwo();
    plan.calls[0].arguments = {L"", L"\\n\n\r\t\\", L"\u00E4\u5B89\U0001F4BE", L""};
    plan.calls[1].arguments = {};
    plan.calls[2].result = 183;
    plan.calls[3].result = 0;
    ASSERT_EQ(keepPlan(plan, folder.path(L"plan")), L"");

    const std::optional<KeptPlan> kept = readPlan(folder.path(L"plan"), problem);

    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->scriptHash, L"0a1b");
    EXPECT_EQ(kept->mode, L"install");
    ASSERT_EQ(kept->calls.size(), plan.calls.size());
    for (size_t i = 0; i < plan.calls.size(); ++i) {
        EXPECT_TRUE(kept->calls[i].asksAs(plan.calls[i])) << i;
        EXPECT_EQ(kept->calls[i].result, plan.calls[i].result) << i;
    }
    ASSERT_EQ(kept->elements.size(), 2u);
    EXPECT_EQ(kept->elements[1].firstCall, 2u);
    EXPECT_EQ(kept->elements[1].line, 4u);
}

TEST_F(PlanFileTest, RefusesWhatIsNoWholePlan) {
    const struct {
        const char* text;
        const wchar_t* problem;
    } files[] = {
        {"", L"It is no plan."},
        {"<Script/>", L"It is no plan."},
        {"temz-plan\t1\nend\n", L"It is a plan of another version of the program."},
        {"temz-plan\t2\nmode\tinstall\n", L"It isn't complete."},
        {"temz-plan\t2\nnonsense\nend\n", L"It has a line that is none of a plan."},
        {"temz-plan\t2\ncall\t\tfile\nend\n", L"It has a line that is none of a plan."},
        {"temz-plan\t2\nend\ncall\t\tfile\tCopyFileW\n", L"It has a line that is none of a plan."},
        {"temz-plan\t2\nsha256\nend\n", L"It has a line that is none of a plan."},
        {"temz-plan\t2\nmode\tinstall\tx\nend\n", L"It has a line that is none of a plan."},
        {"temz-plan\t2\nelement\tFile\nend\n", L"It has a line that is none of a plan."},
        {"temz-plan\t2\nend\tx\n", L"It has a line that is none of a plan."},
    };
    for (const auto& [text, expected] : files) {
        EXPECT_FALSE(read(text)) << text;
        EXPECT_EQ(problem, expected) << text;
    }
    EXPECT_FALSE(readPlan(folder.path(L"none"), problem));
    EXPECT_EQ(problem, L"It can't be opened: " + systemTextWithCode(ERROR_FILE_NOT_FOUND));
    const std::wstring nowhere = folder.path(L"none\\plan");
    EXPECT_EQ(keepPlan(Plan(), nowhere),
              nowhere + L" can't be written: " + systemTextWithCode(ERROR_PATH_NOT_FOUND));
}

TEST_F(PlanFileTest, TakesABackslashThatEscapesNothingForOne) {
    const auto kept = read("temz-plan\t2\nmode\ta\\b\\\nend\n");
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->mode, L"a\\b\\");
}

TEST(PlannedCallTest, AsksTheSameOnlyWhereAllIsTheSame) {
    const PlannedCall others[] = {
        {L"registry", copyA.name, copyA.arguments},
        {copyA.group, L"MoveFileExW", copyA.arguments},
        {copyA.group, copyA.name, {L"a"}},
    };
    EXPECT_TRUE(copyA.asksAs({copyA.group, copyA.name, copyA.arguments, 5}));
    for (const PlannedCall& other : others)
        EXPECT_FALSE(copyA.asksAs(other)) << other.name;
}

TEST(PlanHoldTest, TakesTheCallsInTheirOrderOnly) {
    PlanHold hold = holdOf(planOfTwo());
    EXPECT_FALSE(hold.take(copyA));
    EXPECT_TRUE(hold.take(makeDirectory));
    hold.announced();
    EXPECT_FALSE(hold.take(makeDirectory));
    EXPECT_FALSE(hold.take(copyB));
    EXPECT_TRUE(hold.next()->asksAs(copyA));
    EXPECT_EQ(hold.left(), 3u);
    EXPECT_TRUE(hold.take(copyA));
    EXPECT_TRUE(hold.take(makeDirectory));
    EXPECT_TRUE(hold.take(copyB));
    EXPECT_EQ(hold.next(), nullptr);
    EXPECT_EQ(hold.left(), 0u);
    EXPECT_FALSE(hold.take(copyB));
}

TEST(PlanHoldTest, LetsAnActionBeginAnewWhenItIsRetried) {
    PlanHold hold = holdOf(planOfTwo());
    hold.take(makeDirectory);
    hold.announced();
    hold.take(copyA);
    hold.take(makeDirectory);
    hold.announced();
    hold.take(copyB);
    hold.retried();
    EXPECT_FALSE(hold.take(copyA));
    EXPECT_TRUE(hold.take(makeDirectory));
    EXPECT_FALSE(hold.take(makeDirectory));
    EXPECT_TRUE(hold.take(copyB));
    hold.retried();
    EXPECT_TRUE(hold.take(copyB));
}

TEST(PlanHoldTest, KeepsWhatIsRetriedToItsOwnCalls) {
    Plan plan;
    plan.elements = {{0, L"File", 3}, {1, L"File", 4}};
    plan.calls = {copyA, copyB};
    PlanHold hold = holdOf(plan);
    hold.announced();
    hold.take(copyA);
    hold.announced();
    hold.take(copyB);
    hold.retried();
    EXPECT_FALSE(hold.take(copyA));
    EXPECT_TRUE(hold.take(copyB));
}

TEST(PlanHoldTest, GoesOnBehindARetriedActionThatMadeNoCall) {
    PlanHold hold = holdOf(planOfTwo());
    hold.announced();
    hold.retried();
    EXPECT_TRUE(hold.take(makeDirectory));
    EXPECT_TRUE(hold.take(copyA));
}

TEST(PlanHoldTest, FindsACallThatSucceedsThoughItWasToFail) {
    PlanHold hold = holdOf(planWithFailure());
    hold.take(makeDirectory);
    hold.returned(std::nullopt);
    EXPECT_EQ(hold.otherResult(), L"");
    hold.take(copyA);
    EXPECT_EQ(hold.otherResult(), L"");
    hold.returned(std::nullopt);
    EXPECT_EQ(hold.otherResult(),
              L"CopyFileW(a, C:\\app\\a, 0) has another result: success, and in the plan " +
                  systemTextWithCode(5));
}

TEST(PlanHoldTest, FindsACallThatFailsThoughItWasToSucceedOrOtherwise) {
    PlanHold hold = holdOf(planWithFailure());
    hold.take(makeDirectory);
    hold.returned(183);
    EXPECT_EQ(hold.otherResult(), L"CreateDirectoryW(C:\\app) has another result: " +
                                      systemTextWithCode(183) + L", and in the plan success");
    hold.take(copyA);
    hold.returned(32);
    EXPECT_EQ(hold.otherResult(), L"CopyFileW(a, C:\\app\\a, 0) has another result: " +
                                      systemTextWithCode(32) + L", and in the plan " +
                                      systemTextWithCode(5));
    hold.returned(5);
    EXPECT_EQ(hold.otherResult(), L"");
}

TEST(PlanHoldTest, LooksAtTheLastResultOfWhatIsRetried) {
    PlanHold hold = holdOf(planOfTwo());
    hold.take(makeDirectory);
    hold.returned(std::nullopt);
    hold.announced();
    hold.take(copyA);
    hold.returned(32);
    hold.retried();
    EXPECT_EQ(hold.otherResult(), L"");
    hold.take(copyA);
    hold.returned(32);
    EXPECT_NE(hold.otherResult(), L"");
}

TEST(PlanHoldTest, KnowsWhetherAnActionIsOver) {
    PlanHold hold = holdOf(planOfTwo());
    hold.take(makeDirectory);
    EXPECT_FALSE(hold.isBetweenActions());
    hold.announced();
    EXPECT_FALSE(hold.isBetweenActions());
    hold.take(copyA);
    EXPECT_TRUE(hold.isBetweenActions());
    hold.take(makeDirectory);
    hold.announced();
    EXPECT_FALSE(hold.isBetweenActions());
}

}  // namespace
