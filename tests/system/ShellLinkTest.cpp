#include "system/ShellLink.h"

#include <gmock/gmock.h>

#include "support/ChildProcess.h"
#include "support/FakeCall.h"
#include "support/FakeLinkShell.h"
#include "support/LogFile.h"
#include "support/ShellLinkFile.h"
#include "support/TestFolder.h"
#include "support/Text.h"
#include "system/ClockCalls.h"
#include "system/FileCalls.h"
#include "system/FileOperations.h"
#include "system/PathText.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

namespace {

std::wstring stamped(const std::wstring& path) {
    std::wstring name;
    makeStampedName(path.c_str(), name);
    return name;
}

// Links that the shell writes and reads.

class ShellLinkTest : public testing::Test {
protected:
    /// Makes the link to the target; gives what it says.
    ShellLinkFile linkWith(const wchar_t* workingDirectory, const wchar_t* iconFile) const {
        EXPECT_EQ(createShellLink(link.c_str(), target.c_str(), workingDirectory, iconFile), 0);
        return ShellLinkFile(link);
    }

    std::wstring iconOfLinkWith(const std::wstring& iconFile) const {
        return linkWith(nullptr, iconFile.c_str()).icon;
    }

    const TestFolder folder;
    const std::wstring link = folder.path(L"App.lnk");
    const std::wstring target = folder.write(L"app\\app.exe", "program");
    const LogFile log;
};

TEST_F(ShellLinkTest, SaysWhatItIsGivenAndNoMore) {
    const std::wstring icon = folder.write(L"app.ico", "icon");

    const ShellLinkFile content = linkWith(L"C:\\work", icon.c_str());

    EXPECT_EQ(content.target, target);
    EXPECT_EQ(content.workingDirectory, L"C:\\work");
    EXPECT_EQ(content.icon, stamped(icon));
    EXPECT_EQ(content.iconIndex, 0);
    EXPECT_EQ(content.arguments, L"");
    EXPECT_EQ(content.description, L"");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ShellLinkTest, TakesItsTargetWhole) {
    EXPECT_EQ(createShellLink(link.c_str(), L"C:\\none\\app.exe -start now", L"C:\\w", L""), 0);

    const ShellLinkFile content(link);
    EXPECT_EQ(content.target, L"C:\\none\\app.exe -start now");
    EXPECT_EQ(content.arguments, L"");
}

TEST_F(ShellLinkTest, TakesTheDirectoryAndTheIconOfTheTargetForWhatIsNotGiven) {
    for (const wchar_t* nothing : {static_cast<const wchar_t*>(nullptr), L""}) {
        const ShellLinkFile content = linkWith(nothing, nothing);

        EXPECT_EQ(content.workingDirectory, folder.path(L"app"));
        EXPECT_EQ(content.icon, target);
        EXPECT_EQ(content.iconIndex, 0);
        EXPECT_TRUE(DeleteFileW(link.c_str()));
    }
    EXPECT_FALSE(exists(stamped(target)));
}

TEST_F(ShellLinkTest, OverwritesAFileThatIsThere) {
    writeFile(link, std::string(5000, 'x'));

    EXPECT_EQ(linkWith(nullptr, nullptr).target, target);
}

TEST_F(ShellLinkTest, ThatCannotBeWrittenIsNoFailure) {
    const std::wstring nowhere = folder.path(L"absent\\App.lnk");

    EXPECT_EQ(createShellLink(nowhere.c_str(), target.c_str(), nullptr, nullptr), 0);

    EXPECT_FALSE(exists(nowhere));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ShellLinkTest, ShowsACopyThatKeepsTheIconAsItWas) {
    const std::wstring icon = folder.write(L"app.ico", "icon");

    EXPECT_EQ(iconOfLinkWith(icon), stamped(icon));

    writeFile(icon, "another");
    EXPECT_EQ(readFile(stamped(icon)), "icon");
}

TEST_F(ShellLinkTest, SharesItsCopyOfTheIconWithTheNextLinkOfTheProcess) {
    const std::wstring icon = folder.write(L"app.ico", "icon");
    linkWith(nullptr, icon.c_str());
    writeFile(icon, "another");

    EXPECT_EQ(iconOfLinkWith(icon), stamped(icon));

    EXPECT_EQ(readFile(stamped(icon)), "another");
}

TEST_F(ShellLinkTest, ShowsACopyOfAnIconWithoutAnExtension) {
    const std::wstring icon = folder.write(L"icon", "icon");

    EXPECT_EQ(iconOfLinkWith(icon), stamped(icon));

    EXPECT_EQ(stamped(icon).find(icon), 0u);
    EXPECT_EQ(readFile(stamped(icon)), "icon");
}

TEST_F(ShellLinkTest, ShowsAnIconThatCannotBeCopied) {
    // Its copy would be in a directory that isn't there.
    const std::wstring icon = folder.write(L"version 1.2\\icon", "icon");
    const std::wstring absent = folder.path(L"absent.ico");
    const std::wstring unstaged = folder.write(L"unstaged.ico", "icon");
    const std::wstring stuck = folder.makeDirectory(L"unstaged" + stamped(L".ico") + stagingSuffix);

    EXPECT_EQ(iconOfLinkWith(icon), icon);
    EXPECT_EQ(iconOfLinkWith(absent), absent);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(iconOfLinkWith(unstaged), unstaged);
    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] Failed to delete File " + narrow(stuck)));
}

TEST_F(ShellLinkTest, DoesNotWaitForARestartToCopyAnIcon) {
    const std::wstring icon = folder.write(L"app.ico", "icon");
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto...) {
        SetLastError(ERROR_SHARING_VIOLATION);
        return FALSE;
    });
    FakeCall<fileCalls, &FileCalls::MoveFileExW> move([](auto...) { return TRUE; });

    EXPECT_EQ(iconOfLinkWith(icon), icon);

    EXPECT_EQ(copy.count, 1);
    EXPECT_EQ(move.count, 0);
}

// What is asked of the shell.

class ShellLinkCallsTest : public testing::Test {
protected:
    FakeLinkShell shell;
    const LogFile log;
};

TEST_F(ShellLinkCallsTest, ComeInOrder) {
    EXPECT_EQ(createShellLink(L"C:\\menu\\App.lnk", L"C:\\app.exe", L"C:\\work", L"C:\\none.ico"),
              0);

    EXPECT_THAT(shell.calls,
                ElementsAre(L"CoInitialize", L"CoCreateInstance", L"SetPath C:\\app.exe",
                            L"SetIconLocation 0 C:\\none.ico", L"SetWorkingDirectory C:\\work",
                            L"QueryInterface", L"Save 1 C:\\menu\\App.lnk", L"Release of the file",
                            L"Release of the link", L"CoUninitialize",
                            L"SHChangeNotify 80000002 1005 C:\\menu\\App.lnk",
                            L"SHChangeNotify 80001000 1005 C:\\menu",
                            L"SHChangeNotify 08000000 2000 null"));
}

TEST_F(ShellLinkCallsTest, SetTheDirectoryOfTheTargetInPlaceOfAWorkingDirectory) {
    const struct {
        const wchar_t* target;
        const wchar_t* directory;
    } rows[] = {
        {L"C:\\app\\bin\\a.exe", L"C:\\app\\bin"},
        {L"C:/app/bin/a.exe", L"C:/app/bin"},
        {L"C:\\app/bin/a.exe", L"C:"},
        {L"C:\\app\\", L"C:\\app"},
        {L"\\a.exe", L""},
        {L"a.exe", L""},
        {L"", L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.target);
        for (const wchar_t* nothing : {static_cast<const wchar_t*>(nullptr), L""}) {
            shell.calls.clear();

            EXPECT_EQ(createShellLink(L"C:\\App.lnk", row.target, nothing, nothing), 0);

            EXPECT_THAT(shell.calls,
                        IsSupersetOf({std::wstring(L"SetPath ") + row.target,
                                      std::wstring(L"SetIconLocation 0 ") + row.target,
                                      std::wstring(L"SetWorkingDirectory ") + row.directory}));
        }
    }
}

TEST_F(ShellLinkCallsTest, DoNotCareForTheResultsOfMost) {
    createShellLink(L"C:\\App.lnk", L"C:\\app.exe", L"", L"");
    const std::vector<std::wstring> usual = std::move(shell.calls);
    for (const HRESULT result : {S_FALSE, E_FAIL, RPC_E_CHANGED_MODE}) {
        SCOPED_TRACE(result);
        shell.calls.clear();
        shell.initialized = shell.link.set = shell.link.saved = result;

        EXPECT_EQ(createShellLink(L"C:\\App.lnk", L"C:\\app.exe", L"", L""), 0);

        EXPECT_EQ(shell.calls, usual);
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ShellLinkCallsTest, EndWhereNoLinkObjectCanBeMade) {
    const TestFolder folder;
    const std::wstring icon = folder.write(L"app.ico", "icon");
    shell.created = REGDB_E_CLASSNOTREG;

    EXPECT_EQ(createShellLink(L"C:\\App.lnk", L"C:\\app.exe", L"", icon.c_str()), -1);

    EXPECT_THAT(shell.calls, ElementsAre(L"CoInitialize", L"CoCreateInstance", L"CoUninitialize"));
    EXPECT_FALSE(exists(stamped(icon)));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ShellLinkCallsTest, DoNotReleaseALinkObjectWithoutTheFileInterface) {
    shell.link.queried = E_NOINTERFACE;

    EXPECT_EQ(createShellLink(L"C:\\App.lnk", L"C:\\app.exe", L"", L""), -1);

    EXPECT_THAT(shell.calls,
                ElementsAre(L"CoInitialize", L"CoCreateInstance", L"SetPath C:\\app.exe",
                            L"SetIconLocation 0 C:\\app.exe", L"SetWorkingDirectory C:",
                            L"QueryInterface", L"CoUninitialize"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ShellLinkCallsTest, CopyTheIconBetweenTargetAndIconLocation) {
    const TestFolder folder;
    const std::wstring icon = folder.write(L"app.ico", "icon");
    std::vector<std::wstring> callsBefore;
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto from, auto to, BOOL fail) {
        callsBefore = shell.calls;
        SetLastError(ERROR_ACCESS_DENIED);
        return copy.real(from, to, fail);
    });

    EXPECT_EQ(createShellLink(L"C:\\App.lnk", L"C:\\app.exe", L"", icon.c_str()), 0);

    EXPECT_THAT(callsBefore,
                ElementsAre(L"CoInitialize", L"CoCreateInstance", L"SetPath C:\\app.exe"));
    EXPECT_THAT(shell.calls, Contains(L"SetIconLocation 0 " + stamped(icon)));
}

TEST_F(ShellLinkCallsTest, SetTheIconItselfWhileTheTimeForAStampCannotBeRead) {
    inFreshProcess([this] {
        const TestFolder folder;
        const std::wstring icon = folder.write(L"app.ico", "icon");
        bool readable = false;
        const FakeCall<clockCalls, &ClockCalls::GetLocalTime> now([&](SYSTEMTIME* local) {
            if (readable)
                now.real(local);
        });
        std::vector<std::wstring> copies;
        const FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto from, auto to, BOOL fail) {
            copies = {from, to};
            return copy.real(from, to, fail);
        });

        EXPECT_EQ(createShellLink(L"C:\\App.lnk", L"C:\\app.exe", L"", icon.c_str()), 0);

        EXPECT_THAT(copies, ElementsAre(icon, icon));
        EXPECT_THAT(shell.calls, Contains(L"SetIconLocation 0 " + icon));
        EXPECT_EQ(readFile(icon), "icon");
        EXPECT_THAT(log.lines(), IsEmpty());

        readable = true;
        EXPECT_EQ(createShellLink(L"C:\\App.lnk", L"C:\\app.exe", L"", icon.c_str()), 0);
        EXPECT_NE(stamped(icon), icon);
        EXPECT_THAT(shell.calls, Contains(L"SetIconLocation 0 " + stamped(icon)));
    });
}

TEST_F(ShellLinkCallsTest, SaveALinkPathThatFitsTheBuffer) {
    const std::wstring link = L"C:\\" + std::wstring(256, L'n');

    EXPECT_EQ(createShellLink(link.c_str(), L"C:\\app.exe", L"", L""), 0);

    EXPECT_THAT(shell.calls, Contains(L"Save 1 " + link));
}

TEST(ShellLinkDeathTest, LinkPathThatDoesNotFitTheBufferEndsTheProcess) {
    FakeLinkShell shell;
    const std::wstring link = L"C:\\" + std::wstring(257, L'n');

    EXPECT_EXIT(createShellLink(link.c_str(), L"C:\\app.exe", L"", L""), endedByInvalidParameter(),
                "");
}

using NotifyLinkChangedTest = ShellLinkCallsTest;

TEST_F(NotifyLinkChangedTest, TellsOfTheLinkAndThenOfItsDirectory) {
    notifyLinkChanged(L"C:\\menu\\sub\\App.lnk");

    EXPECT_THAT(shell.calls, ElementsAre(L"SHChangeNotify 80000002 1005 C:\\menu\\sub\\App.lnk",
                                         L"SHChangeNotify 80001000 1005 C:\\menu\\sub"));
}

TEST_F(NotifyLinkChangedTest, FindsTheDirectoryAsForAnyPath) {
    const std::pair<const wchar_t*, std::wstring> rows[] = {
        {L"C:/menu/App.lnk", L"C:/menu"},
        {L"C:\\menu/App.lnk", L"C:"},
        {L"App.lnk", L""},
    };
    for (const auto& [link, directory] : rows) {
        shell.calls.clear();

        notifyLinkChanged(link);

        EXPECT_THAT(shell.calls, Contains(L"SHChangeNotify 80001000 1005 " + directory));
    }
}

}  // namespace
