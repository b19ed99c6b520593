// What an administrator meets when a machine isn't as a script wants it.

#include <gmock/gmock.h>
#include <windows.h>

#include <optional>

#include "SetupTest.h"
#include "support/LockedFile.h"
#include "support/Requirements.h"
#include "support/Restart.h"
#include "support/TestKey.h"
#include "support/TestService.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

namespace {

class FailureTest : public SetupTest {
protected:
    /// a.txt is installed, and an install of its next version fails.
    void shipNext(const std::string& attributes = {}) const {
        ship(L"a.txt", "new");
        folder.write(L"app\\a.txt", "old");
        writeScript(file("a.txt", attributes));
    }
};

TEST_F(FailureTest, TellsOfAFileInUseFromWhereToWhereItShouldGoAndWhatToDo) {
    shipNext();
    const LockedFile inUse(app(L"a.txt"));

    const ProgramRun run = temz(L"install install.xml");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.error,
              copyFailed("a.txt", "the file is in use by another program", ERROR_SHARING_VIOLATION,
                         "Close the program, or give the file KillProcess or SupportDelayInstall "
                         "in the script.") +
                  "Failed after 0 of 1 action (1603). What was done before stays.\n");
}

TEST_F(FailureTest, TellsOfAReadOnlyFileThatItIs) {
    REQUIRES_ORDINARY_USER();
    shipNext();
    SetFileAttributesW(app(L"a.txt").c_str(), FILE_ATTRIBUTE_READONLY);

    const ProgramRun run = temz(L"install install.xml");
    SetFileAttributesW(app(L"a.txt").c_str(), FILE_ATTRIBUTE_NORMAL);

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.error,
                StartsWith(copyFailed("a.txt", "the file there is read-only", ERROR_ACCESS_DENIED,
                                      "Clear that (attrib -r -h -s), and ship the file without "
                                      "it.")));
}

/// A registry key that nobody may open, which a script is to have.
class RefusedKeyTest : public FailureTest {
protected:
    void SetUp() override {
        REQUIRES_WINE("takes an administrator's rights from the host");
        ship(L"install.xml",
             "<Script><Product><InstallExecuteSequence><Feature><Component>"
             "<RegistryKey Root='HKEY_CURRENT_USER' Key='" +
                 utf8(path) +
                 "' Action='create'/></Component></Feature>"
                 "</InstallExecuteSequence></Product></Script>");
    }

    const TestKey key;
    const std::wstring path = key.make(L"refused");
    const RefusedKey refused{path};
    const std::string failed = "temz: Creating registry key HKEY_CURRENT_USER\\" + utf8(path) +
                               " failed: access is denied";
};

TEST_F(RefusedKeyTest, IsForAnAdministratorWhereTheUserIsNone) {
    const ProgramRun run = temzNotElevated(L"install install.xml --log run.log");

    EXPECT_EQ(run.exitCode, 740u);
    EXPECT_THAT(run.error,
                StartsWith(failed + ", and the program isn't run as an administrator. [error 5]\n"
                                    "      Run it from an administrator's prompt.\n"
                                    "Failed after 0 actions (740)."));
    EXPECT_THAT(readFile(setup(L"run.log")), HasSubstr(", not as an administrator\r\n"));
}

TEST_F(RefusedKeyTest, HasRightsToLookAtWhereTheUserIsOne) {
    const ProgramRun run = temz(L"install install.xml");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.error, StartsWith(failed + ". [error 5]\n      Look at the rights of "));
}

TEST_F(FailureTest, TellsOfADirectoryThatOnlyAnAdministratorMayMake) {
    REQUIRES_WINE("takes an administrator's rights from the host");
    REQUIRES_ORDINARY_USER();
    ship(L"a.txt", "a");
    ship(L"install.xml",
         "<Script><Product><Directory Path='Z:\\usr\\temz-tests'><Component Id='C'>" +
             file("a.txt") +
             "</Component></Directory><InstallExecuteSequence><Feature><ComponentRef Id='C'/>"
             "</Feature></InstallExecuteSequence></Product></Script>");

    const ProgramRun run = temzNotElevated(L"install install.xml");

    EXPECT_EQ(run.exitCode, 740u);
    EXPECT_THAT(run.error, StartsWith("temz: Copying a.txt failed: access is denied, and the "
                                      "program isn't run as an administrator. [error 5]\n"));
}

TEST_F(FailureTest, TellsOfAServiceThatItHasStoppedInsteadOfStarting) {
    REQUIRES_WINE("installs a service");
    const TestService service({.kind = L"fails"});
    const std::string name = utf8(service.name());
    writeSequence("<ServiceControl Name='" + name + "' Action='start' Wait='yes'/>");

    const ProgramRun run = temz(L"install install.xml");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.error,
                StartsWith("temz: Starting service " + name + " failed: it has stopped."));
}

TEST_F(FailureTest, TellsOfAServiceThatIsNotThere) {
    writeSequence("<ServiceControl Name='temz-lacking' Action='start' Wait='yes'/>");

    const ProgramRun run = temz(L"install install.xml");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.error,
                StartsWith("temz: Starting service temz-lacking failed: there is no such service. "
                           "[error 1060]\n"
                           "      The script wants its short name, which sc query shows.\n"));
}

/// A file of which a new version waits for the restart, among what others have left to it.
class PendingFileTest : public FailureTest {
protected:
    void SetUp() override {
        REQUIRES_WINE("leaves a replacement to the next restart, which takes elevation");
        MoveFileExW(folder.write(L"others.txt", "").c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
        others = pendingReplacements();
        shipNext("SupportDelayInstall='yes'");
        const LockedFile inUse(app(L"a.txt"));
        EXPECT_EQ(temz(L"install install.xml").exitCode, 3010u);
        EXPECT_NE(pendingReplacements(), others);
    }

    const TakesBackReplacements replacements;
    std::optional<std::wstring> others;
};

TEST_F(PendingFileTest, ComesBackAfterAnUninstallWhichWarnsOfThat) {
    const ProgramRun run = temz(L"uninstall install.xml");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.error, "temz: The next restart brings " + utf8(app(L"a.txt")) +
                             " back, which waits for it since it was replaced. --drop-pending "
                             "takes that back.\n");
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt!@#$%", "new")));
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "new")));
}

TEST_F(PendingFileTest, IsTakenBackAloneWhereThatIsAsked) {
    const ProgramRun run = temz(L"uninstall install.xml --drop-pending");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.error,
              "temz: " + utf8(app(L"a.txt")) + " no longer waits for the next restart.\n");
    EXPECT_EQ(pendingReplacements(), others);
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(FailureTest, TakesNothingBackWhereNoFileWaits) {
    shipNext();

    const ProgramRun run = temz(L"uninstall install.xml --drop-pending");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.error, "");
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(PendingFileTest, StaysAwayWhereTheUninstallRemovesTheDirectory) {
    writeScript(file("a.txt") + "<RemoveDirectory Path='" + utf8(folder.path(L"app")) + "'/>");

    const ProgramRun run = temz(L"uninstall install.xml");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.error, "");
    restart();
    EXPECT_FALSE(exists(folder.path(L"app")));
}

TEST_F(PendingFileTest, WaitsInItsNewestVersionWhenAnotherIsInstalledBeforeTheRestart) {
    ship(L"a.txt", "newer");
    ProgramRun run;
    {
        const LockedFile inUse(app(L"a.txt"));
        run = temz(L"install install.xml");
    }

    EXPECT_EQ(run.exitCode, 3010u);
    EXPECT_EQ(run.output,
              "Copying a.txt\nDone: 1 action. Until the machine is restarted (Restart, not Shut "
              "down) these wait: " +
                  utf8(app(L"a.txt")) + ".\n");
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "newer")));
}

TEST_F(PendingFileTest, WaitsNoLongerWhenAnotherVersionCouldBePutInPlace) {
    ship(L"a.txt", "newer");

    const ProgramRun install = temz(L"install install.xml");
    const ProgramRun uninstall = temz(L"uninstall install.xml");

    EXPECT_EQ(install.exitCode, 0u);
    EXPECT_EQ(install.output, "Copying a.txt\nDone: 1 action.\n");
    EXPECT_EQ(uninstall.exitCode, 0u);
    EXPECT_EQ(uninstall.error, "");
    restart();
    EXPECT_THAT(installedFiles(), IsEmpty());
}

}  // namespace
