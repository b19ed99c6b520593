#include "system/ShellCommand.h"

#include <gmock/gmock.h>

#include "support/FakeShell.h"
#include "support/Requirements.h"
#include "support/StartedProcess.h"
#include "support/TestFolder.h"
#include "system/SystemCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr wchar_t commandShell[] = L"C:\\windows\\system32\\cmd.exe";

TEST(ShellCommandTest, AsksTheShellForAHiddenStartWithElevation) {
    FakeShell shell;

    EXPECT_EQ(runShellCommand(L"C:\\a b\\c.exe", L"/x \"y z\"", false, false), 0);

    EXPECT_EQ(shell.verb, L"runas");
    EXPECT_EQ(shell.file, L"C:\\a b\\c.exe");
    EXPECT_EQ(shell.parameters, L"/x \"y z\"");
    EXPECT_EQ(shell.started.cbSize, 112u);
    EXPECT_EQ(shell.started.fMask, 0x540u);
    EXPECT_EQ(shell.started.nShow, 0);
    EXPECT_EQ(shell.started.hwnd, nullptr);
    EXPECT_EQ(shell.started.lpDirectory, nullptr);
    EXPECT_EQ(shell.started.hInstApp, nullptr);
    EXPECT_EQ(shell.started.lpIDList, nullptr);
    EXPECT_EQ(shell.started.lpClass, nullptr);
    EXPECT_EQ(shell.started.hkeyClass, nullptr);
    EXPECT_EQ(shell.started.dwHotKey, 0u);
    EXPECT_EQ(shell.started.hIcon, nullptr);
    EXPECT_EQ(shell.started.hProcess, nullptr);
}

TEST(ShellCommandTest, ShowsTheWindowOnlyWhenToldSo) {
    FakeShell shell;

    EXPECT_EQ(runShellCommand(L"a.exe", L"", false, true), 0);
    EXPECT_EQ(shell.started.nShow, 5);

    EXPECT_EQ(runShellCommand(L"a.exe", L"", false, false), 0);
    EXPECT_EQ(shell.started.nShow, 0);
}

TEST(ShellCommandTest, VerbFollowsTheMajorVersionOfTheSystem) {
    const std::tuple<DWORD, DWORD, std::wstring> rows[] = {
        {4, 90, L"open"}, {5, 0, L"open"},  {5, 2, L"open"},   {6, 0, L"runas"},
        {6, 1, L"runas"}, {6, 2, L"runas"}, {10, 0, L"runas"},
    };
    for (const auto& [major, minor, verb] : rows) {
        SCOPED_TRACE(testing::Message() << major << "." << minor);
        FakeShell shell;
        FakeCall<systemCalls, &SystemCalls::GetVersionExW> ask(
            [&, major = major, minor = minor](OSVERSIONINFOW* version) {
                EXPECT_EQ(version->dwOSVersionInfoSize, 276u);
                EXPECT_EQ(version->dwMajorVersion | version->dwBuildNumber, 0u);
                EXPECT_EQ(version->szCSDVersion[0], L'\0');
                version->dwMajorVersion = major;
                version->dwMinorVersion = minor;
                return TRUE;
            });

        EXPECT_EQ(runShellCommand(L"a.exe", L"", false, false), 0);

        EXPECT_EQ(shell.verb, verb);
    }
}

TEST(ShellCommandTest, StartsNothingWhenTheVersionIsUnreadable) {
    FakeShell shell;
    FakeCall<systemCalls, &SystemCalls::GetVersionExW> ask([](OSVERSIONINFOW* version) {
        version->dwMajorVersion = 6;
        return FALSE;
    });

    EXPECT_EQ(runShellCommand(L"a.exe", L"", true, false), -1);

    EXPECT_THAT(shell.steps, IsEmpty());
}

TEST(ShellCommandTest, StartsNothingWithoutAFile) {
    FakeShell shell;
    FakeCall<systemCalls, &SystemCalls::GetVersionExW> ask([](auto...) { return TRUE; });

    EXPECT_EQ(runShellCommand(nullptr, L"", true, false), -1);
    EXPECT_EQ(runShellCommand(L"", L"", true, false), -1);

    EXPECT_THAT(shell.steps, IsEmpty());
    EXPECT_EQ(ask.count, 0);
}

TEST(ShellCommandTest, FailsWhenTheShellRefuses) {
    FakeShell shell;
    shell.accepts = FALSE;

    EXPECT_EQ(runShellCommand(L"a.exe", L"", true, false), -1);

    EXPECT_THAT(shell.steps, ElementsAre(FakeShell::start()));
}

TEST(ShellCommandTest, WaitsForTheProcessWithoutALimitAndClosesIt) {
    FakeShell shell;

    EXPECT_EQ(runShellCommand(L"a.exe", L"", true, false), 0);

    EXPECT_THAT(shell.steps, ElementsAre(FakeShell::start(), FakeShell::wait(shell.process),
                                         FakeShell::close(shell.process)));
}

TEST(ShellCommandTest, ClosesTheProcessThatItDoesNotWaitFor) {
    FakeShell shell;

    EXPECT_EQ(runShellCommand(L"a.exe", L"", false, false), 0);

    EXPECT_THAT(shell.steps, ElementsAre(FakeShell::start(), FakeShell::close(shell.process)));
}

TEST(ShellCommandTest, StartWithoutAProcessIsNoFailure) {
    FakeShell shell;
    shell.process = nullptr;

    EXPECT_EQ(runShellCommand(L"a.txt", L"", true, false), 0);
    EXPECT_EQ(runShellCommand(L"a.txt", L"", false, false), 0);

    EXPECT_THAT(shell.steps,
                ElementsAre(FakeShell::start(), FakeShell::wait(nullptr), FakeShell::close(nullptr),
                            FakeShell::start(), FakeShell::close(nullptr)));
}

TEST(ShellCommandTest, DoesNotReadTheExitCode) {
    REQUIRES_WINE("asks for elevation");
    for (const DWORD code : {0u, 7u}) {
        const StartedProcess process;
        const std::wstring parameters = L"/c exit " + std::to_wstring(code);

        EXPECT_EQ(runShellCommand(commandShell, parameters.c_str(), true, false), 0);

        EXPECT_EQ(process.exitCode(), code);
    }
}

TEST(ShellCommandTest, ReturnsWhileAProgramRunsThatItDoesNotWaitFor) {
    REQUIRES_WINE("asks for elevation");
    const StartedProcess process;
    const std::wstring sleeper = testProgramDirectory() + L"\\temz_sleeper.exe";

    EXPECT_EQ(runShellCommand(sleeper.c_str(), L"", false, false), 0);

    EXPECT_TRUE(process.isRunning());
}

TEST(ShellCommandTest, FailsOverWhatIsNotThere) {
    const TestFolder folder;

    EXPECT_EQ(runShellCommand(folder.path(L"absent.exe").c_str(), L"", true, false), -1);
    EXPECT_EQ(runShellCommand(folder.path(L"no\\absent.exe").c_str(), L"", true, false), -1);
}

TEST(ShellCommandTest, FailsOverWhatIsNoProgram) {
    REQUIRES_WINE("asks for elevation");
    const TestFolder folder;

    EXPECT_EQ(runShellCommand(folder.write(L"junk.exe", "junk").c_str(), L"", true, false), -1);
}

}  // namespace
