// Plans by the host program, and runs that keep to them.

#include <gmock/gmock.h>

#include "SetupTest.h"
#include "support/LockedFile.h"
#include "support/TestFolder.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::SizeIs;

namespace {

/// The exit code, and behind the lines their last reason.
auto HasReason(const std::string& exitCode, const std::string& reason) {
    return AllOf(testing::StartsWith(exitCode + "{"), HasSubstr("\"exitCode\":" + exitCode + ","),
                 HasSubstr("\"reason\":\"" + reason));
}

class PlanTest : public SetupTest {
protected:
    /// Two files in a component, of which the second is in a condition.
    void shipTwo() const {
        ship(L"a.txt", "a1");
        ship(L"b.txt", "b1");
        writeScript(file("a.txt") + "<Condition Expression='OS_BIT E 64'>" + file("b.txt") +
                    "</Condition>");
    }

    /// A plan of an installation that is kept.
    void approve() const { ASSERT_EQ(temz(L"plan install.xml --out approved.plan").exitCode, 0u); }
    ProgramRun installAsApproved(const std::wstring& options = {}) const {
        return temz(L"install install.xml --plan approved.plan " + options);
    }
};

TEST_F(PlanTest, ShowsWhatARunWouldDoAndDoesNothing) {
    shipTwo();

    const ProgramRun plan = temz(L"plan install.xml");

    EXPECT_EQ(plan.exitCode, 0u);
    EXPECT_EQ(plan.error, "");
    EXPECT_THAT(plan.output,
                AllOf(HasSubstr("install.xml, install, on this machine (Windows "),
                      HasSubstr("2 files added; 4 bytes on C:\n\n  Feature\n    Component All\n"),
                      HasSubstr("+ " + utf8(app(L"a.txt")) + " "), HasSubstr("  new, 2 bytes, "),
                      HasSubstr("      Condition OS_BIT E 64 "), HasSubstr("true (OS_BIT = 64)\n"),
                      Not(HasSubstr("\x1B"))));
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(PlanTest, ShowsTheModeThatIsAskedFor) {
    shipTwo();
    temz(L"install install.xml");
    ship(L"a.txt", "a2");

    EXPECT_THAT(temz(L"plan install.xml --mode upgrade").output,
                AllOf(HasSubstr("2 files replaced"), HasSubstr("2 bytes"),
                      HasSubstr(", the same content\n")));
    EXPECT_THAT(temz(L"plan install.xml --mode=uninstall").output, HasSubstr("2 files removed"));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a1"), Pair(L"b.txt", "b1")));
}

TEST_F(PlanTest, LooksAtOtherMachinesBranches) {
    shipTwo();

    EXPECT_THAT(temz(L"plan install.xml --assume OS_BIT=32 --assume OS_MAJOR_VERSION=5").output,
                AllOf(HasSubstr("), assuming OS_BIT = 32, OS_MAJOR_VERSION = 5\n"),
                      HasSubstr("false (OS_BIT = 32), 1 file left out\n")));
    const ProgramRun unknown = temz(L"plan install.xml --assume NONE=1");
    EXPECT_EQ(unknown.exitCode, 1639u);
    EXPECT_EQ(unknown.error, "temz: The script has no variable NONE.\n");
    EXPECT_EQ(temz(L"plan install.xml --assume OS_BIT=x").error,
              "temz: The variable OS_BIT can only be an integer.\n");
}

TEST_F(PlanTest, TellsWhatWouldFail) {
    writeScript(file("lacking.txt") + file("optional.txt", "Vital='no'"));

    const ProgramRun plan = temz(L"plan install.xml");

    EXPECT_EQ(plan.exitCode, 1u);
    EXPECT_THAT(plan.output,
                AllOf(HasSubstr("x Copying lacking.txt fails: the file to copy isn't there. [error "
                                "2] A run asks here, and ends unless it goes on.\n"),
                      HasSubstr("x Copying optional.txt fails: the file to copy isn't there. "
                                "[error 2] A run goes on: it isn't vital.\n")));
}

TEST_F(PlanTest, IsWrittenAsAPageAndKept) {
    shipTwo();

    const ProgramRun plan = temz(L"plan install.xml --html plan.html --out approved.plan");

    EXPECT_EQ(plan.exitCode, 0u);
    EXPECT_THAT(readFile(setup(L"plan.html")), HasSubstr("<!DOCTYPE html>"));
    EXPECT_THAT(readFile(setup(L"approved.plan")), HasSubstr("\tCopyFileW\t"));
    const ProgramRun nowhere = temz(L"plan install.xml --html none\\plan.html");
    EXPECT_EQ(nowhere.exitCode, 2u);
    EXPECT_THAT(nowhere.error, HasSubstr("temz: none\\plan.html can't be written: "));
}

TEST_F(PlanTest, TellsAsJsonTooWhyThereIsNone) {
    const auto lines = [this](const std::wstring& options) {
        const ProgramRun plan = temz(L"plan install.xml --json " + options);
        EXPECT_THAT(plan.output,
                    testing::StartsWith("{\"event\":\"plan\",\"schema\":\"temz-plan-1\","));
        EXPECT_THAT(plan.output, HasSubstr("}\n{\"event\":\"end\","));
        EXPECT_NE(plan.error, "");
        return std::to_string(plan.exitCode) + plan.output;
    };
    EXPECT_THAT(lines(L""), HasReason("1619", "install.xml can't be opened: "));
    ship(L"install.xml", "<Script>");
    EXPECT_THAT(lines(L"--no-check"), HasReason("1620", "install.xml can't be loaded: "));
    writeSequence("<CustomAction DllFile='a.dll' DllEntry='" + std::string(600, 'a') + "'/>");
    EXPECT_THAT(lines(L""), HasReason("1620", "install.xml isn't planned: "));
    writeSequence("");
    EXPECT_THAT(lines(L"--assume NONE=1"), HasReason("1639", "The script has no variable NONE."));
    EXPECT_THAT(lines(L"--out none\\a.plan"), HasReason("2", "none\\\\a.plan can't be written: "));
}

TEST_F(PlanTest, IsRefusedForScriptsThatCannotBeLoaded) {
    EXPECT_EQ(temz(L"plan none.xml").exitCode, 1619u);
    ship(L"install.xml", "<Script>");
    EXPECT_EQ(temz(L"plan install.xml").exitCode, 1620u);
}

TEST_F(PlanTest, RunThatKeepsToItIsDone) {
    shipTwo();
    approve();

    const ProgramRun run = installAsApproved();

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.error, "");
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a1"), Pair(L"b.txt", "b1")));
}

TEST_F(PlanTest, RunIsEndedBeforeTheFirstChangeThatIsNotInIt) {
    ship(L"a.txt", "a1");
    ship(L"b.txt", "b1");
    writeScript("<FileSearch Name='found.txt' Path='" + utf8(folder.path(L"")) +
                "' Expression='OS_BIT E 64'/>" + file("a.txt") + file("b.txt"));
    approve();
    const std::wstring kept = setup(L"approved.plan");
    std::string text = readFile(kept);
    text.replace(text.rfind("b.txt"), 5, "c.txt");
    ship(L"approved.plan", text);

    const ProgramRun run = installAsApproved(L"--quiet");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(
        run.error,
        AllOf(HasSubstr("temz: The run was about to leave its plan: it comes to CopyFileW("),
              HasSubstr("b.txt, 0), and the plan has CopyFileW("), HasSubstr("c.txt, 0).\n"),
              HasSubstr("Failed after 1 of 2 actions (1603).")));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a1")));
}

TEST_F(PlanTest, ActionBeforeTheDepartureCountsAsDone) {
    ship(L"a.txt", "a1");
    writeScript(file("a.txt") + file("a.txt"));
    approve();
    std::string text = readFile(setup(L"approved.plan"));
    text.replace(text.rfind("CreateDirectoryW"), 16, "RemoveDirectoryW");
    ship(L"approved.plan", text);

    const ProgramRun run = installAsApproved();

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.error, HasSubstr("Failed after 1 of 2 actions (1603)."));
}

TEST_F(PlanTest, RunIsEndedBehindACallThatSucceedsThoughItWasToFail) {
    const std::wstring held = folder.write(L"app\\a.txt", "a1");
    folder.write(L"app\\b.txt", "b1");
    writeScript(file("a.txt", "Vital='no'") + file("b.txt"));
    {
        const LockedFile lock(held);
        ASSERT_EQ(temz(L"plan install.xml --mode uninstall --out approved.plan").exitCode, 0u);
    }

    const ProgramRun run = temz(L"uninstall install.xml --plan approved.plan --quiet");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.error,
                AllOf(HasSubstr("temz: The run has left its plan: DeleteFileW(" + utf8(held) +
                                ") has another result: success, and in the plan "),
                      HasSubstr("[error 32]."), HasSubstr("have the new plan approved.")));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"b.txt", "b1")));
}

TEST_F(PlanTest, RunIsEndedBehindACallThatFailsThoughItWasToSucceed) {
    const std::wstring held = folder.write(L"app\\a.txt", "a1");
    folder.write(L"app\\b.txt", "b1");
    writeScript(file("a.txt", "Vital='no'") + file("b.txt"));
    ASSERT_EQ(temz(L"plan install.xml --mode uninstall --out approved.plan").exitCode, 0u);
    const LockedFile lock(held);

    const ProgramRun run = temz(L"uninstall install.xml --plan approved.plan --quiet");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.error, HasSubstr("[error 32], and in the plan success.\n"));
    EXPECT_THAT(installedFiles(), SizeIs(2));
}

TEST_F(PlanTest, RunWhoseLastCallEndsOtherwiseIsToldSo) {
    const std::wstring held = folder.write(L"app\\a.txt", "a1");
    writeScript(file("a.txt", "Vital='no'"));
    {
        const LockedFile lock(held);
        ASSERT_EQ(temz(L"plan install.xml --mode uninstall --out approved.plan").exitCode, 0u);
    }

    const ProgramRun run = temz(L"uninstall install.xml --plan approved.plan");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_THAT(run.error,
                testing::StartsWith("temz: The run has left its plan at its end: DeleteFileW("));
}

TEST_F(PlanTest, WithAssumptionsIsNotKept) {
    shipTwo();

    const ProgramRun plan = temz(L"plan install.xml --assume OS_BIT=32 --out approved.plan");

    EXPECT_EQ(plan.exitCode, 1639u);
    EXPECT_EQ(plan.error,
              "temz: --out keeps a plan for a run on this machine, and --assume tells of another "
              "one. See temz help.\n");
    EXPECT_FALSE(exists(setup(L"approved.plan")));
}

TEST_F(PlanTest, ScriptThatEndsTheProcessIsNotPlanned) {
    writeScript("<CustomAction DllFile='a.dll' DllEntry='" + std::string(600, 'a') +
                "' Return='check'/>");

    const ProgramRun plan = temz(L"plan install.xml");

    EXPECT_EQ(plan.exitCode, 1620u);
    EXPECT_EQ(plan.output, "");
    EXPECT_THAT(plan.error,
                HasSubstr("install.xml isn't planned: a run would surely end half-way."));
}

TEST_F(PlanTest, KeptPlanMayChangeTheEndsOfItsLines) {
    shipTwo();
    ASSERT_EQ(temz(L"plan install.xml --out approved.plan").exitCode, 0u);
    std::string lines = readFile(setup(L"approved.plan"));
    ASSERT_GT(std::erase(lines, '\r'), 0u);
    ship(L"approved.plan", lines);

    EXPECT_EQ(temz(L"install install.xml --plan approved.plan").exitCode, 0u);
}

TEST_F(PlanTest, RunThatHasLessToDoIsToldSo) {
    ship(L"a.txt", "a1");
    folder.write(L"app\\a.txt", "a1");
    writeScript(file("a.txt"));
    ASSERT_EQ(temz(L"plan install.xml --mode uninstall --out approved.plan").exitCode, 0u);
    std::filesystem::remove(app(L"a.txt"));

    const ProgramRun run = temz(L"uninstall install.xml --plan approved.plan");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.error,
              "temz: The plan has more than there was to do: its last calls, 1 of them, "
              "weren't made.\n");
}

TEST_F(PlanTest, FailureBehindWhatCannotBeForeseenIsNoCertainty) {
    ship(L"a.cmd", "");
    writeScript("<ShellExcute File='" + utf8(setup(L"a.cmd")) +
                "' Return='sync'/><ServiceControl Name='temz-none' Action='start' Wait='no'/>");

    const ProgramRun plan = temz(L"plan install.xml");

    EXPECT_EQ(plan.exitCode, 0u);
    EXPECT_THAT(plan.output, AllOf(HasSubstr("1 vital action may fail"),
                                   HasSubstr("x Starting service temz-none may fail: ")));
}

TEST_F(PlanTest, OfAnotherScriptModeOrFormatIsRefusedAtOnce) {
    shipTwo();
    approve();

    const ProgramRun otherMode = temz(L"uninstall install.xml --plan approved.plan");
    EXPECT_EQ(otherMode.exitCode, 1620u);
    EXPECT_THAT(otherMode.error, HasSubstr("temz: The plan approved.plan can't be kept to. It is "
                                           "of another mode: install.\n"));
    ship(L"none.plan", "");
    EXPECT_EQ(temz(L"install install.xml --plan none.plan").exitCode, 1620u);
    writeScript(file("a.txt"));
    const ProgramRun otherScript = installAsApproved();
    EXPECT_EQ(otherScript.exitCode, 1620u);
    EXPECT_THAT(otherScript.error, HasSubstr("It is of another script.\n"));
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(PlanTest, RetriesAreNoDeparture) {
    shipTwo();
    std::filesystem::remove(setup(L"b.txt"));
    EXPECT_EQ(temz(L"plan install.xml --out approved.plan").exitCode, 1u);

    const ProgramRun run = installAsApproved(L"--on-error retry:2,0");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.error, AllOf(HasSubstr("Copying b.txt failed"), Not(HasSubstr("its plan"))));
}

TEST_F(PlanTest, OptionsOfPlansAndRunsAreKeptApart) {
    shipTwo();
    EXPECT_THAT(temz(L"install install.xml --out a").error,
                testing::StartsWith("temz: --out is no option of install."));
    EXPECT_THAT(temz(L"plan install.xml --plan a").error,
                testing::StartsWith("temz: --plan is no option of plan."));
    EXPECT_THAT(temz(L"plan install.xml --mode repair").error,
                HasSubstr("--mode can't be \"repair\", only install|uninstall|upgrade."));
    EXPECT_THAT(installedFiles(), IsEmpty());
}

}  // namespace
