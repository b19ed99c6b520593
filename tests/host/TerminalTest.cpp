// The host program at a real terminal.

#include <gmock/gmock.h>
#include <windows.h>

#include "SetupTest.h"
#include "support/Requirements.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

/// A text as a screen of 80 columns shows it.
std::string wrapped(const std::string& text) {
    constexpr size_t columns = 80;
    std::string screen;
    size_t column = 0;
    for (const char character : text) {
        if (character != '\n' && column == columns) {
            screen.erase(screen.find_last_not_of(' ') + 1);
            screen += '\n';
            column = 0;
        }
        column = character == '\n' ? 0 : column + 1;
        screen += character;
    }
    return screen;
}

std::string failedAfter(const std::string& actions, const std::string& rest = {}) {
    return wrapped("Failed after " + actions + ". What was done before stays." + rest + "\n");
}

std::string endedAfter(const std::string& actions) {
    return "Ended by the user after " + actions + " (1602). What was done before stays.\n";
}

class TerminalTest : public SetupTest {
protected:
    void SetUp() override { REQUIRES_WINE("a console may be smaller than its window"); }

    std::string missing(const std::string& name) const { return wrapped(SetupTest::missing(name)); }
};

const std::string question = "Retry, abort or ignore? [r/a/i] ";

std::string bar(int hashes, const std::string& text) {
    return "[" + std::string(hashes, '#') + std::string(30 - hashes, '.') + "] " + text + "\n";
}

std::string done(const std::string& actions) {
    return bar(30, "100% Done") + "Done: " + actions + ".\n";
}

TEST_F(TerminalTest, ShowsOneBarToTheEnd) {
    ship(L"a.txt", "a");
    ship(L"b.txt", "b");
    writeScript(file("a.txt") + file("b.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output, done("2 actions"));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a"), Pair(L"b.txt", "b")));
}

TEST_F(TerminalTest, AsksAndGoesOnWithoutTheAction) {
    ship(L"b.txt", "b");
    writeScript(file("a.txt") + file("b.txt"));

    const ProgramRun run =
        temzAtTerminal(L"install install.xml --accept-ignored", L"maybe,ignore,");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output,
              bar(0, "  0% Copying a.txt") + missing("a.txt") + question + "maybe\n" + question +
                  "ignore\n" + bar(30, "100% Done") +
                  wrapped("Done: 1 action. Left out: Copying a.txt (the file to copy isn't "
                          "there).\n"));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"b.txt", "b")));
}

TEST_F(TerminalTest, AsksAfterEachRetryUntilTheUserAborts) {
    writeScript(file("a.txt") + file("b.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml", L"r,r,a,");

    EXPECT_EQ(run.exitCode, 1602u);
    const std::string failed = missing("a.txt") + question;
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + failed + "r\n" + failed + "r\n" + failed +
                              "a\n" + endedAfter("0 of 2 actions"));
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TerminalTest, TakesTheWholeWordsForAnswers) {
    writeScript(file("a.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml", L"retry,abort,");

    EXPECT_EQ(run.exitCode, 1602u);
    const std::string failed = missing("a.txt") + question;
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + failed + "retry\n" + failed + "abort\n" +
                              endedAfter("0 of 1 action"));
}

TEST_F(TerminalTest, MarksWhatACheckFindsInItsLine) {
    ship(L"a.xml",
         "<Script><Product><InstallExecuteSequence><Fragment>\n"
         "  <Cautoin Title='a'/></Fragment></InstallExecuteSequence></Product></Script>");

    const ProgramRun run = temzAtTerminal(L"check a.xml");

    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_THAT(run.output, testing::HasSubstr("\n     2 |   <Cautoin Title='a'/></Fragment>"));
    EXPECT_THAT(run.output, testing::HasSubstr("\n       |   ^~~~~~~~\n"));
}

TEST_F(TerminalTest, IsAbortedByTheEndOfTheInput) {
    writeScript(file("a.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml", L"Z,");

    EXPECT_EQ(run.exitCode, 1602u);
    EXPECT_TRUE(run.output.ends_with("\n" + endedAfter("0 of 1 action"))) << run.output;
}

TEST_F(TerminalTest, TakesNoAnswerThatWasTypedBeforeTheQuestion) {
    writeScript(file("a.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml", L"i,i,|a,");

    EXPECT_EQ(run.exitCode, 1602u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + missing("a.txt") + question + "a\n" +
                              endedAfter("0 of 1 action"));
}

TEST_F(TerminalTest, ShowsHowFarTheRunHasComeAtEachFailure) {
    writeScript(file("a.txt") + file("b.txt") + file("c.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml", L"i,i,a,");

    EXPECT_EQ(run.output,
              bar(0, "  0% Copying a.txt") + missing("a.txt") + question + "i\n" +
                  bar(9, " 33% Copying b.txt") + missing("b.txt") + question + "i\n" +
                  bar(19, " 66% Copying c.txt") + missing("c.txt") + question + "a\n" +
                  wrapped("Ended by the user after 0 of 3 actions (1602). What was done "
                          "before stays. Left out: Copying a.txt (the file to copy "
                          "isn't there); Copying b.txt (the file to copy isn't "
                          "there).\n"));
}

TEST_F(TerminalTest, KeepsACautionOnALineOfItsOwn) {
    ship(L"a.txt", "a");
    ship(L"b.txt", "b");
    writeScript(file("a.txt") + "<Caution Title='Read me'/>" + file("b.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + "Caution: Read me\n" + done("3 actions"));
}

TEST_F(TerminalTest, ShowsTextsOfAnyAlphabet) {
    writeScript("<Caution Title='Caf\u00E9'/>");

    EXPECT_EQ(temzAtTerminal(L"install install.xml").output,
              "Caution: Caf\u00E9\n" + done("1 action"));
}

TEST_F(TerminalTest, NeverWrapsTheBar) {
    const std::string name = std::string(100, 'x');
    writeScript(file(name));

    const ProgramRun run = temzAtTerminal(L"install install.xml --on-error=abort");

    EXPECT_EQ(run.exitCode, 1603u);
    const std::string line = bar(0, "  0% Copying " + name);
    EXPECT_TRUE(run.output.starts_with(line.substr(0, 79) + "\ntemz: Copying xxx")) << run.output;
}

TEST_F(TerminalTest, ObeysThePolicyWithoutAQuestion) {
    writeScript(file("a.txt"));

    const ProgramRun run =
        temzAtTerminal(L"install install.xml --on-error=ignore --accept-ignored", L"a,");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output,
              bar(0, "  0% Copying a.txt") + missing("a.txt") + bar(30, "100% Done") +
                  "Done: 0 actions. Left out: Copying a.txt (the file to copy isn't there).\n");
}

TEST_F(TerminalTest, AbortsWithoutAQuestionWhenPassive) {
    writeScript(file("a.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml /passive", L"i,");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + missing("a.txt") +
                              failedAfter("0 of 1 action (1603)"));
}

TEST_F(TerminalTest, ShowsFailuresOnlyAndAsksNothingWhenQuiet) {
    writeScript("<Caution Title='Read me'/>");
    EXPECT_EQ(temzAtTerminal(L"install install.xml /quiet").output, "");

    writeScript("<Caution Title='Read me'/>" + file("a.txt"));
    const ProgramRun run = temzAtTerminal(L"install install.xml --quiet", L"i,");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, missing("a.txt") + failedAfter("1 of 2 actions (1603)"));
}

TEST_F(TerminalTest, EndsBehindTheActionThatCtrlCInterrupts) {
    ship(L"a.txt", "a");
    ship(L"install.xml", actionScript("pressCtrlC", file("a.txt")));

    const ProgramRun run = temzAtTerminal(L"install install.xml");

    EXPECT_EQ(run.exitCode, 1602u);
    EXPECT_EQ(
        run.output,
        bar(0, "  0% Custom action pressCtrlC") +
            wrapped("temz: The run ends behind this action: Custom action pressCtrlC. Press "
                    "Ctrl+C once more to end it at once.\n") +
            "\n" +
            wrapped("Stopped before Copying a.txt, after 1 of 2 actions (1602). What was done "
                    "before stays.\n"));
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TerminalTest, EndsAtOnceWhenCtrlCIsPressedAgain) {
    ship(L"a.txt", "a");
    ship(L"install.xml", actionScript("pressCtrlCTwice", file("a.txt")));

    const ProgramRun run = temzAtTerminal(L"install install.xml");

    EXPECT_EQ(run.exitCode, 1602u);
    EXPECT_TRUE(run.output.ends_with(
        "\ntemz: Ended in the middle of this action: Custom action pressCtrlCTwice (1602).\n"))
        << run.output;
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TerminalTest, EndsThePauseBeforeARetryAtCtrlC) {
    ship(L"install.xml", actionScript("pressCtrlCAndFail", ""));

    const ProgramRun run = temzAtTerminal(L"install install.xml --on-error=retry:1,999999");

    EXPECT_EQ(run.exitCode, 1602u);
    EXPECT_TRUE(run.output.ends_with(endedAfter("0 of 1 action"))) << run.output;
}

TEST_F(TerminalTest, EndsTheWaitForAnotherRunAtCtrlC) {
    ship(L"hold.xml", actionScript("hold", ""));
    writeScript(file("a.txt"));
    const HandlePtr other = startTemz(L"install hold.xml");
    ASSERT_TRUE(waitUntil([this] { return exists(setup(L"held")); }));

    const ProgramRun run = temzAtTerminal(L"install install.xml --wait 999999", L"C");

    EXPECT_EQ(run.exitCode, 1602u);
    EXPECT_EQ(run.output,
              "temz: Another run goes on on this machine, and is waited for.\n"
              "temz: The wait for another run was ended.\n"
              "Nothing was done (1602).\n");
    DeleteFileW(setup(L"held").c_str());
    EXPECT_EQ(waitForProgram(other.get()), 0u);
}

TEST_F(TerminalTest, HasNoQuickEditDuringARun) {
    ship(L"install.xml", actionScript("tellQuickEdit", ""));

    EXPECT_THAT(temzAtTerminal(L"install install.xml --on-error=abort").output,
                testing::HasSubstr("Custom action tellQuickEdit failed: QuickEdit is off."));
}

TEST_F(TerminalTest, AbortsWhereTheQuestionWouldNotBeSeen) {
    writeScript(file("a.txt"));

    const ProgramRun run =
        atTerminal(L"cmd /c \"temz.exe install install.xml 2>error.txt\"", L"i,");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt"));
    EXPECT_EQ(withoutReturns(readFile(setup(L"error.txt"))),
              SetupTest::missing("a.txt") +
                  "Failed after 0 of 1 action (1603). What was done before stays.\n");
}

TEST_F(TerminalTest, AbortsWhereTheAnswerIsNotTyped) {
    writeScript(file("a.txt"));

    const ProgramRun run = atTerminal(L"cmd /c \"temz.exe install install.xml <NUL\"", L"i,");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + missing("a.txt") +
                              failedAfter("0 of 1 action (1603)"));
}

TEST_F(TerminalTest, AbortsWhereTheConsoleHasNoWindow) {
    writeScript(file("a.txt"));

    const ProgramRun run = temzWithoutWindow(L"install install.xml", L"i,");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + missing("a.txt") +
                              failedAfter("0 of 1 action (1603)"));
}

TEST_F(TerminalTest, AsksAlsoWhereThePlainLinesGoToAFile) {
    writeScript(file("a.txt"));

    const ProgramRun run =
        atTerminal(L"cmd /c \"temz.exe install install.xml >output.txt\"", L"a,");

    EXPECT_EQ(run.exitCode, 1602u);
    EXPECT_EQ(run.output, missing("a.txt") + question + "a\n" + endedAfter("0 of 1 action"));
    EXPECT_EQ(withoutReturns(readFile(setup(L"output.txt"))), "Copying a.txt\n");
}

}  // namespace
