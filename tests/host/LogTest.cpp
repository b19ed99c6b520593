// The log of the host program, and the runs that wait for each other.

#include <gmock/gmock.h>
#include <windows.h>

#include <regex>
#include <sstream>

#include "SetupTest.h"
#include "support/Requirements.h"

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class LogTest : public SetupTest {
protected:
    /// The lines of setup's run.log, without their times.
    std::vector<std::string> logLines() const {
        std::vector<std::string> lines;
        std::istringstream text(withoutReturns(readFile(setup(L"run.log"))));
        static const std::regex time(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d )");
        for (std::string line; std::getline(text, line);) {
            EXPECT_TRUE(std::regex_search(line, time)) << line;
            lines.push_back(std::regex_replace(line, time, ""));
        }
        return lines;
    }

    std::string whereTo(const std::string& name) const {
        return "from " + utf8(setup(wide(name))) + " to " + utf8(app(wide(name)));
    }
};

TEST_F(LogTest, TellsLineByLineWhatIsDone) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt") + file("lacking.txt"));

    const ProgramRun run = temz(L"install install.xml --log run.log");

    EXPECT_THAT(run.error, HasSubstr(" The log: " + utf8(setup(L"run.log")) + "\n"));
    EXPECT_THAT(
        logLines(),
        ElementsAre(
            AllOf(StartsWith("temz "), EndsWith("temz.exe\" install install.xml --log run.log")),
            StartsWith("Windows "),
            StartsWith("install " + utf8(setup(L"install.xml")) + ", SHA-256 "),
            "1. Copying a.txt, " + whereTo("a.txt") + ": done",
            "    attempt 1: Copying lacking.txt: the file to copy isn't there [error 2]",
            "    the call that failed: CopyFileW(" + utf8(setup(L"lacking.txt")) + ", " +
                utf8(app(L"lacking.txt")) + ", 0): " + utf8(systemMessage(ERROR_FILE_NOT_FOUND)),
            "    Put it where the script's Source says, counted from the folder of temz.exe.",
            "2. Copying lacking.txt, " + whereTo("lacking.txt") + ": failed",
            "Failed after 1 of 2 actions (1603). What was done before stays.", "Exit code 1603"));
}

TEST_F(LogTest, IsContinuedByTheNextRun) {
    writeScript("");
    EXPECT_EQ(temz(L"install install.xml /log run.log").exitCode, 0u);
    const std::string first = readFile(setup(L"run.log"));
    EXPECT_EQ(temz(L"uninstall install.xml --log=run.log").exitCode, 0u);

    EXPECT_TRUE(readFile(setup(L"run.log")).starts_with(first));
    EXPECT_GT(readFile(setup(L"run.log")).size(), first.size());
}

TEST_F(LogTest, HasEveryCallWhenAskedForThem) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt"));
    const std::string copy = "    file.CopyFileW(" + utf8(setup(L"a.txt")) + ", ";

    EXPECT_EQ(temz(L"install install.xml --log run.log").exitCode, 0u);
    EXPECT_THAT(readFile(setup(L"run.log")), Not(HasSubstr(copy)));
    EXPECT_EQ(temz(L"install install.xml --log run.log --verbose").exitCode, 0u);
    EXPECT_THAT(readFile(setup(L"run.log")), HasSubstr(copy));
}

TEST_F(LogTest, MustBeOpenedBeforeAnythingIsDone) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt"));

    const ProgramRun run = temz(L"install install.xml --log lacking\\run.log");

    EXPECT_EQ(run.exitCode, 1622u);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.error, "temz: lacking\\run.log can't be opened: " +
                             systemError(ERROR_PATH_NOT_FOUND) + "\nNothing was done (1622).\n");
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(LogTest, IsToldToBeIncompleteWhereTheDiskIsFull) {
    REQUIRES_WINE("has a device that is always full");
    ship(L"a.txt", "a");
    writeScript(file("a.txt"));

    const ProgramRun run = temz(L"install install.xml --quiet --log \\\\?\\unix\\dev\\full");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.error, "temz: The log is incomplete: " + systemError(ERROR_DISK_FULL) + "\n");
    EXPECT_THAT(installedFiles(), SizeIs(1));
}

/// A run that has come to its first action and goes on when it is let.
class RunUnderWayTest : public LogTest {
protected:
    RunUnderWayTest() {
        ship(L"hold.xml", actionScript("hold", file("a.txt")));
        ship(L"a.txt", "a");
        writeScript(file("a.txt"));
        first = startTemz(L"install hold.xml --log run.log");
        EXPECT_TRUE(waitUntil([this] { return exists(setup(L"held")); }));
    }

    void letGo() const { DeleteFileW(setup(L"held").c_str()); }

    HandlePtr first;
};

TEST_F(RunUnderWayTest, CanBeFollowedInItsLog) {
    EXPECT_THAT(logLines(), Contains(StartsWith("install " + utf8(setup(L"hold.xml")))));
    EXPECT_NE(logLines().back(), "Exit code 0");

    letGo();
    EXPECT_EQ(waitForProgram(first.get()), 0u);
    EXPECT_EQ(logLines().back(), "Exit code 0");
}

TEST_F(RunUnderWayTest, KeepsAnotherOneFromBeginning) {
    const ProgramRun second = temz(L"install install.xml");

    EXPECT_EQ(second.exitCode, 1618u);
    EXPECT_EQ(second.error,
              "temz: Another run goes on on this machine.\nNothing was done (1618).\n");
    EXPECT_THAT(installedFiles(), IsEmpty());
    letGo();
    EXPECT_EQ(waitForProgram(first.get()), 0u);
}

TEST_F(RunUnderWayTest, SharesItsLogWithAnotherOneThatTellsWhyItDoesNotBegin) {
    EXPECT_EQ(temz(L"install install.xml --log run.log").exitCode, 1618u);

    EXPECT_THAT(logLines(), Contains("Another run goes on on this machine."));
    letGo();
    EXPECT_EQ(waitForProgram(first.get()), 0u);
    EXPECT_EQ(logLines().back(), "Exit code 0");
}

TEST_F(RunUnderWayTest, IsWaitedForOnRequest) {
    const HandlePtr second = startTemz(L"install install.xml --wait 999999 --log run.log");
    constexpr DWORD longEnoughToEnd = 500;  // for one that doesn't wait
    EXPECT_EQ(WaitForSingleObject(second.get(), longEnoughToEnd), WAIT_TIMEOUT);

    letGo();
    EXPECT_EQ(waitForProgram(first.get()), 0u);
    EXPECT_EQ(waitForProgram(second.get()), 0u);
}

}  // namespace
