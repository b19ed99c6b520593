// The host program at a real terminal.

#include <gmock/gmock.h>
#include <windows.h>

#include "SetupTest.h"
#include "support/Requirements.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class TerminalTest : public SetupTest {
protected:
    void SetUp() override { REQUIRES_WINE("a console may be smaller than its window"); }
};

const std::string question = "Retry, abort or ignore? [r/a/i] ";

std::string bar(int hashes, const std::string& text) {
    return "[" + std::string(hashes, '#') + std::string(30 - hashes, '.') + "] " + text + "\n";
}

/// What is told about a file that the setup lacks.
std::string missing(const std::string& name) {
    return "temz: Copying " + name + " failed: " + systemError(ERROR_FILE_NOT_FOUND) + "\n";
}

TEST_F(TerminalTest, ShowsOneBarToTheEnd) {
    ship(L"a.txt", "a");
    ship(L"b.txt", "b");
    writeScript(file("a.txt") + file("b.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output, bar(30, "100% Done"));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a"), Pair(L"b.txt", "b")));
}

TEST_F(TerminalTest, AsksAndGoesOnWithoutTheAction) {
    ship(L"b.txt", "b");
    writeScript(file("a.txt") + file("b.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml", L"maybe,ignore,");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + missing("a.txt") + question + "maybe\n" +
                              question + "ignore\n" + bar(30, "100% Done"));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"b.txt", "b")));
}

TEST_F(TerminalTest, AsksAfterEachRetryUntilTheUserAborts) {
    writeScript(file("a.txt") + file("b.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml", L"r,r,a,");

    EXPECT_EQ(run.exitCode, 1602u);
    const std::string attempt = bar(0, "  0% Copying a.txt") + missing("a.txt") + question;
    EXPECT_EQ(run.output, attempt + "r\n" + attempt + "r\n" + attempt + "a\n");
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TerminalTest, ShowsHowFarTheRunHasComeAtEachFailure) {
    writeScript(file("a.txt") + file("b.txt") + file("c.txt") + file("d.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml", L"i,i,i,i,");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + missing("a.txt") + question + "i\n" +
                              bar(7, " 25% Copying b.txt") + missing("b.txt") + question + "i\n" +
                              bar(15, " 50% Copying c.txt") + missing("c.txt") + question + "i\n" +
                              bar(22, " 75% Copying d.txt") + missing("d.txt") + question + "i\n" +
                              bar(30, "100% Done"));
}

TEST_F(TerminalTest, KeepsACautionOnALineOfItsOwn) {
    ship(L"a.txt", "a");
    ship(L"b.txt", "b");
    writeScript(file("a.txt") + "<Caution Title='Read me'/>" + file("b.txt"));

    const ProgramRun run = temzAtTerminal(L"install install.xml");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output,
              bar(0, "  0% Copying a.txt") + "Caution: Read me\n" + bar(30, "100% Done"));
}

TEST_F(TerminalTest, ShowsTextsOfAnyAlphabet) {
    writeScript("<Caution Title='Caf\u00E9'/>");

    EXPECT_EQ(temzAtTerminal(L"install install.xml").output,
              "Caution: Caf\u00E9\n" + bar(30, "100% Done"));
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

    const ProgramRun run = temzAtTerminal(L"install install.xml --on-error=ignore", L"a,");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + missing("a.txt") + bar(30, "100% Done"));
}

TEST_F(TerminalTest, AbortsWhereTheQuestionWouldNotBeSeen) {
    writeScript(file("a.txt"));

    const ProgramRun run =
        atTerminal(L"cmd /c \"temz.exe install install.xml 2>error.txt\"", L"i,");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt"));
    EXPECT_EQ(readFile(setup(L"error.txt")), missing("a.txt"));
}

TEST_F(TerminalTest, AbortsWhereTheAnswerIsNotTyped) {
    writeScript(file("a.txt"));

    const ProgramRun run = atTerminal(L"cmd /c \"temz.exe install install.xml <NUL\"", L"i,");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + missing("a.txt"));
}

TEST_F(TerminalTest, AbortsWhereTheConsoleHasNoWindow) {
    writeScript(file("a.txt"));

    const ProgramRun run = temzWithoutWindow(L"install install.xml", L"i,");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, bar(0, "  0% Copying a.txt") + missing("a.txt"));
}

TEST_F(TerminalTest, AsksAlsoWhereThePlainLinesGoToAFile) {
    writeScript(file("a.txt"));

    const ProgramRun run =
        atTerminal(L"cmd /c \"temz.exe install install.xml >output.txt\"", L"a,");

    EXPECT_EQ(run.exitCode, 1602u);
    EXPECT_EQ(run.output, missing("a.txt") + question + "a\n");
    EXPECT_EQ(readFile(setup(L"output.txt")), "Copying a.txt\n");
}

}  // namespace
