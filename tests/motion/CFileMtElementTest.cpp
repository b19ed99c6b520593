#include "motion/CFileMtElement.h"

#include <gmock/gmock.h>

#include <utility>

#include "support/ChildProcess.h"
#include "support/Declarations.h"
#include "support/FakeCall.h"
#include "support/FileElementTest.h"
#include "support/LockedFile.h"
#include "support/Requirements.h"
#include "support/Text.h"
#include "system/FileCalls.h"
#include "system/FileOperations.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::Values;
using Notification = RecordingObserver::Notification;

namespace {

using CFileMtElementTest = FileElementTest;

// What the element asks of the script.

TEST_F(CFileMtElementTest, DeclaresItsAttributesInOrder) {
    ASSERT_TRUE(loadComponent(file()));
    const CFileMtElement element(*context.findElementById(L"File", L"F"), context);

    EXPECT_THAT(
        declaredBy(element),
        ElementsAre(Pair(L"Name", true), Pair(L"Source", true), Pair(L"SupportDelayInstall", false),
                    Pair(L"KillProcess", false), Pair(L"Vital", false)));
    EXPECT_THAT(derivedBy(element),
                ElementsAre(Pair(L"Path", true), Pair(L"SupportDelayInstall", false)));
}

TEST_F(CFileMtElementTest, IsMadeOfAFileNodeAlone) {
    ASSERT_TRUE(loadComponent(file()));
    const XmlHandlePtr component = context.findElementById(L"Component", L"C");

    try {
        const CFileMtElement element(*component, context);
        ADD_FAILURE() << "made of a Component";
    } catch (const std::wstring& message) {
        EXPECT_EQ(message, L"Failed to create element (Component,C)");
    }
}

TEST_F(CFileMtElementTest, RefusesChildren) {
    ASSERT_TRUE(loadComponent("<File Id='F' Name='a.txt' Source='" + narrow(source) +
                              "'><Caution Title='x'/></File>"));

    EXPECT_EQ(run(), -1);

    expectError(ERROR_CODE_MESSAGE, L"", 0, L"(File,F) has a illegal child element(Caution)");
    EXPECT_FALSE(exists(target));
}

TEST_F(CFileMtElementTest, IsNotMadeWithoutNameOrSource) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"<File Id='F' Source='s'/>", L"Name"},
        {"<File Id='F' Name='n'/>", L"Source"},
        {"<File Id='F'/>", L"Name"},
    };
    for (const auto& [element, missing] : rows) {
        SCOPED_TRACE(element);
        context.unload();
        ASSERT_TRUE(loadComponent(element));

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(errorMessage(),
                  L"Create Motion Element error:(File,F) cant get the require explicit " + missing +
                      L"attribute.(Component,C) cann't create child element(File)");
    }
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CFileMtElementTest, IsNotMadeWithoutADirectoryAroundIt) {
    ASSERT_TRUE(loadProduct("<InstallExecuteSequence><Feature><Component Id='C'>" + file() +
                            "</Component></Feature></InstallExecuteSequence>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(),
              L"Create Motion Element error:(File,F) can't get Path attribute from  parent element."
              L"(Component,C) cann't create child element(File)");
}

TEST_F(CFileMtElementTest, FailsAtOnceWhenItsAttributesAreNotSettled) {
    using Pass = bool (CElement::*)(CContext&, std::wstring&);
    struct Row {
        const char* element;
        std::vector<Pass> passes;
        const wchar_t* message;
    };
    const Pass declared = &CElement::readDeclaredAttributes;
    const Pass derived = &CElement::resolveDerivedAttributes;
    const Row rows[] = {
        {"<File Id='F' Name='n' Source='s'/>", {declared}, L"(File,F) can't get Path attribute."},
        {"<File Id='F' Name='n' Source='s'/>", {derived}, L"(File,F) can't get Name attribute."},
        {"<File Id='F' Name='n'/>", {declared, derived}, L"(File,F) can't get Source attribute."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(narrow(row.message));
        context.unload();
        ASSERT_TRUE(loadComponent(row.element));
        CFileMtElement element(*context.findElementById(L"File", L"F"), context);
        std::wstring ignored;
        for (const Pass pass : row.passes)
            (element.*pass)(context, ignored);
        context.runMode = RUNMODE_INSTALL;

        EXPECT_EQ(element.execute(context), -1);

        expectError(ERROR_CODE_MESSAGE, L"", 0, row.message);
    }
    EXPECT_FALSE(exists(folder.path(L"app")));
}

TEST_F(CFileMtElementTest, DoesNotReadOn) {
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(loadComponent(file("On='install'")));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_FALSE(exists(target));
}

TEST_F(CFileMtElementTest, FailsInAnUnknownModeWithoutTouchingAnything) {
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(loadComponent(file()));

    EXPECT_EQ(run(unknownMode), -1);

    expectNoError();
    EXPECT_EQ(readFile(target), "old");
    EXPECT_THAT(observer.updates, IsEmpty());
}

// Install and upgrade.

class FileCopyTest : public FileElementTest, public testing::WithParamInterface<RunMode> {
protected:
    int32_t runInMode() { return run(GetParam()); }

    bool rebootRequired() { return context.getProduct()->rebootRequired; }

    const std::wstring staging = target + stagingSuffix;
};

INSTANTIATE_TEST_SUITE_P(ModesThatPutInPlace, FileCopyTest,
                         Values(RUNMODE_INSTALL, RUNMODE_UPGRADE), [](const auto& mode) {
                             return mode.param == RUNMODE_INSTALL ? "Install" : "Upgrade";
                         });

TEST_P(FileCopyTest, MakesTheDirectoriesAndCopiesTheFile) {
    ASSERT_TRUE(loadComponent("<File Name='deep\\down\\a.txt' Source='" + narrow(source) + "'/>"));

    EXPECT_EQ(runInMode(), 0);

    EXPECT_EQ(readFile(folder.path(L"app\\deep\\down\\a.txt")), "new");
    EXPECT_FALSE(rebootRequired());
    expectNoError();
}

TEST_P(FileCopyTest, ReplacesAFileThatIsThere) {
    folder.write(L"app\\a.txt", "a longer and older content");
    ASSERT_TRUE(loadComponent(file()));

    EXPECT_EQ(runInMode(), 0);

    EXPECT_EQ(readFile(target), "new");
}

TEST_P(FileCopyTest, AnnouncesEachCopyWithItsProgress) {
    ASSERT_TRUE(loadComponent(file() + "<File Name='b.txt' Source='" + narrow(source) + "'/>"));

    EXPECT_EQ(runInMode(), 0);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_COPY_FILE, L"a.txt", L"", 0},
                                              Notification{ACTION_COPY_FILE, L"b.txt", L"", 50}));
}

TEST_P(FileCopyTest, AnnouncesTheCopyWhenTheDirectoryIsMade) {
    ASSERT_TRUE(loadComponent(file()));
    size_t announcedBeforeDirectory = 0;
    size_t announcedBeforeCopy = 0;
    FakeCall<fileCalls, &FileCalls::CreateDirectoryW> make([&](auto path, auto security) {
        announcedBeforeDirectory += observer.updates.size();
        return make.real(path, security);
    });
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto from, auto to, BOOL fail) {
        announcedBeforeCopy += observer.updates.size();
        return copy.real(from, to, fail);
    });

    EXPECT_EQ(runInMode(), 0);

    EXPECT_EQ(make.count, 1);
    EXPECT_EQ(announcedBeforeDirectory, 0u);
    EXPECT_EQ(announcedBeforeCopy, 1u);
}

TEST_P(FileCopyTest, MakesNoDirectoryForATargetThatStandsInNone) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"", L"a.txt"}, {"\\", L"\\a.txt"}, {"/", L"/a.txt"}};
    for (const auto& [directory, expected] : rows) {
        SCOPED_TRACE(directory);
        context.unload();
        observer.updates.clear();
        ASSERT_TRUE(loadIn(directory, file()));
        const FakeCall<fileCalls, &FileCalls::CreateDirectoryW> make([](auto...) { return TRUE; });
        std::wstring to;
        const FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto, auto copied, BOOL) {
            to = copied;
            return TRUE;
        });

        EXPECT_EQ(runInMode(), 0);

        EXPECT_EQ(make.count, 0);
        EXPECT_EQ(to, expected);
        EXPECT_THAT(observer.updates,
                    ElementsAre(Notification{ACTION_COPY_FILE, L"a.txt", L"", 0}));
    }
}

TEST_P(FileCopyTest, AnnouncesANameThatJustFits) {
    const std::wstring longest(511, L'n');
    ASSERT_TRUE(
        loadComponent("<File Name='" + narrow(longest) + "' Source='" + narrow(source) + "'/>"));
    const FakeCall<fileCalls, &FileCalls::CopyFileW> copy([](auto...) {
        SetLastError(ERROR_DISK_FULL);
        return FALSE;
    });

    EXPECT_EQ(runInMode(), ERROR_DISK_FULL);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_COPY_FILE, longest, L"", 0}));
    expectError(ACTION_COPY_FILE, longest, ERROR_DISK_FULL, systemMessage(ERROR_DISK_FULL));
}

TEST_P(FileCopyTest, EndsTheProcessWhenTheNameIsTooLongToAnnounce) {
    ASSERT_TRUE(loadComponent("<File Name='" + std::string(512, 'n') + "' Source='s'/>"));

    EXPECT_EXIT(runInMode(), endedByInvalidParameter(), "");
}

TEST_P(FileCopyTest, TakesAnAbsoluteSourceForARelativeOne) {
    ASSERT_TRUE(loadComponent("<File Name='a.txt' Source='C:\\other\\a.txt'/>"));
    std::wstring from;
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto existing, auto...) {
        from = existing;
        return TRUE;
    });

    EXPECT_EQ(runInMode(), 0);

    EXPECT_EQ(from, testProgramDirectory() + L"\\C:\\other\\a.txt");
}

TEST_P(FileCopyTest, FailsWithTheSystemsCodeWhenTheTargetIsInUse) {
    folder.write(L"app\\a.txt", "old");
    const LockedFile lock(target);
    ASSERT_TRUE(loadComponent(file()));

    EXPECT_EQ(runInMode(), ERROR_SHARING_VIOLATION);

    expectError(ACTION_COPY_FILE, L"a.txt", ERROR_SHARING_VIOLATION,
                systemMessage(ERROR_SHARING_VIOLATION));
    EXPECT_FALSE(exists(staging));
    EXPECT_FALSE(rebootRequired());
}

TEST_P(FileCopyTest, FailsWithTheSystemsCodeWhenTheSourceIsMissing) {
    ASSERT_TRUE(loadComponent("<File Name='a.txt' Source='absent'/>"));

    EXPECT_EQ(runInMode(), ERROR_FILE_NOT_FOUND);

    expectError(ACTION_COPY_FILE, L"a.txt", ERROR_FILE_NOT_FOUND,
                systemMessage(ERROR_FILE_NOT_FOUND));
}

TEST_P(FileCopyTest, LeavesAReplacementToTheNextRestart) {
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(loadComponent(file("SupportDelayInstall='yes'")));
    FakeCall<fileCalls, &FileCalls::MoveFileExW> move([](auto...) {
        SetLastError(ERROR_ACCESS_DENIED);
        return TRUE;
    });
    {
        const LockedFile lock(target);
        EXPECT_EQ(runInMode(), 0);
    }

    EXPECT_TRUE(rebootRequired());
    expectNoError();
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_EQ(readFile(staging), "new");
    EXPECT_EQ(readFile(target), "old");
}

TEST_P(FileCopyTest, DelaysForTheExactWordOfTheFileOrElseOfTheComponent) {
    struct Row {
        std::string onFile;
        std::string onComponent;
        bool delays;
    };
    const Row rows[] = {
        {"", "", false},
        {"SupportDelayInstall='yes'", "", true},
        {"SupportDelayInstall='Yes'", "", false},
        {"SupportDelayInstall='YES'", "", false},
        {"SupportDelayInstall='yes '", "", false},
        {"SupportDelayInstall='ye'", "", false},
        {"SupportDelayInstall='true'", "", false},
        {"SupportDelayInstall='1'", "", false},
        {"SupportDelayInstall=''", "", false},
        {"", "SupportDelayInstall='yes'", true},
        {"", "SupportDelayInstall='no'", false},
        {"SupportDelayInstall='no'", "SupportDelayInstall='yes'", false},
        {"SupportDelayInstall=''", "SupportDelayInstall='yes'", false},
        {"SupportDelayInstall='yes'", "SupportDelayInstall='no'", true},
    };
    folder.write(L"app\\a.txt", "old");
    const LockedFile lock(target);
    FakeCall<fileCalls, &FileCalls::MoveFileExW> move([](auto...) { return TRUE; });
    for (const Row& row : rows) {
        SCOPED_TRACE("file: " + row.onFile + ", component: " + row.onComponent);
        context.unload();
        ASSERT_TRUE(loadComponent(file(row.onFile), row.onComponent));

        EXPECT_EQ(runInMode(), row.delays ? 0 : ERROR_SHARING_VIOLATION);

        EXPECT_EQ(rebootRequired(), row.delays);
    }
}

TEST_P(FileCopyTest, FindsTheDelayOfTheComponentBeyondConditions) {
    folder.write(L"app\\a.txt", "old");
    const LockedFile lock(target);
    const FakeCall<fileCalls, &FileCalls::MoveFileExW> move([](auto...) { return TRUE; });
    const std::pair<std::string, bool> rows[] = {{"", true}, {"SupportDelayInstall='no'", false}};
    for (const auto& [onFile, delays] : rows) {
        SCOPED_TRACE(onFile);
        context.unload();
        ASSERT_TRUE(loadComponent("<Condition Expression='1'><Condition Expression='1'>" +
                                      file(onFile) + "</Condition></Condition>",
                                  "SupportDelayInstall='yes'"));

        EXPECT_EQ(runInMode(), delays ? 0 : ERROR_SHARING_VIOLATION);

        EXPECT_EQ(rebootRequired(), delays);
    }
}

TEST_P(FileCopyTest, TakesNoDelayFromAConditionItself) {
    folder.write(L"app\\a.txt", "old");
    const LockedFile lock(target);
    ASSERT_TRUE(loadComponent("<Condition Expression='1' SupportDelayInstall='yes'>" + file() +
                              "</Condition>"));

    EXPECT_EQ(runInMode(), ERROR_SHARING_VIOLATION);
}

TEST_P(FileCopyTest, AsksNoElementAboveTheComponentForTheDelay) {
    folder.write(L"app\\a.txt", "old");
    const LockedFile lock(target);
    ASSERT_TRUE(loadProduct("<Directory Path='" + narrow(folder.path(L"app")) +
                            "' SupportDelayInstall='yes'><Component Id='C'>" + file() +
                            "</Component></Directory><InstallExecuteSequence>"
                            "<Feature SupportDelayInstall='yes'><ComponentRef Id='C'/></Feature>"
                            "</InstallExecuteSequence>"));

    EXPECT_EQ(runInMode(), ERROR_SHARING_VIOLATION);
}

TEST_P(FileCopyTest, ReportsTheSecondFailureWhenADelayIsAllowed) {
    ASSERT_TRUE(loadComponent(file("SupportDelayInstall='yes'")));
    std::vector<std::wstring> targets;
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto, auto to, BOOL) {
        targets.push_back(to);
        SetLastError(targets.size() == 1 ? ERROR_SHARING_VIOLATION : ERROR_DISK_FULL);
        return FALSE;
    });

    EXPECT_EQ(runInMode(), ERROR_DISK_FULL);

    EXPECT_THAT(targets, ElementsAre(target, staging));
    expectError(ACTION_COPY_FILE, L"a.txt", ERROR_DISK_FULL, systemMessage(ERROR_DISK_FULL));
    EXPECT_FALSE(rebootRequired());
}

TEST_P(FileCopyTest, FailsWithTheCodeOfARefusedRegistration) {
    folder.write(L"app\\a.txt", "old");
    const LockedFile lock(target);
    ASSERT_TRUE(loadComponent(file("SupportDelayInstall='yes'")));
    FakeCall<fileCalls, &FileCalls::MoveFileExW> move([](auto...) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    });

    EXPECT_EQ(runInMode(), ERROR_ACCESS_DENIED);

    expectError(ACTION_COPY_FILE, L"a.txt", ERROR_ACCESS_DENIED,
                systemMessage(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(rebootRequired());
}

TEST_P(FileCopyTest, FailsWithoutAMessageWhenAStagingFileIsStuck) {
    folder.write(L"app\\a.txt", "old");
    writeFile(staging, "stuck");
    const LockedFile lock(staging);
    ASSERT_TRUE(loadComponent(file("SupportDelayInstall='yes'")));

    EXPECT_EQ(runInMode(), -1);

    expectError(ACTION_COPY_FILE, L"a.txt", 0xFFFFFFFF, L"");
    EXPECT_EQ(readFile(target), "old");
    EXPECT_FALSE(rebootRequired());
}

TEST_P(FileCopyTest, FailsWithoutAMessageWhenTheSystemGivesNoCode) {
    ASSERT_TRUE(loadComponent(file()));
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([](auto...) {
        SetLastError(ERROR_SUCCESS);
        return FALSE;
    });

    EXPECT_EQ(runInMode(), -1);

    expectError(ACTION_COPY_FILE, L"a.txt", 0xFFFFFFFF, L"");
}

TEST_P(FileCopyTest, FailsWithAnEmptyMessageForACodeThatTheSystemCannotExplain) {
    constexpr int32_t unexplained = 123456;
    ASSERT_EQ(systemMessage(unexplained), L"");
    ASSERT_TRUE(loadComponent(file()));
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([](auto...) {
        SetLastError(unexplained);
        return FALSE;
    });

    EXPECT_EQ(runInMode(), unexplained);

    expectError(ACTION_COPY_FILE, L"a.txt", unexplained, L"");
}

TEST_P(FileCopyTest, TellsOfADirectoryThatCannotBeMadeThroughTheCopyAlone) {
    folder.write(L"app", "a file where the directory should be");
    // The file itself is taken for a directory that is there; none can be made below it.
    for (const std::wstring name : {L"a.txt", L"deep\\a.txt"}) {
        SCOPED_TRACE(narrow(name));
        context.unload();
        observer.updates.clear();
        ASSERT_TRUE(
            loadComponent("<File Name='" + narrow(name) + "' Source='" + narrow(source) + "'/>"));

        EXPECT_EQ(runInMode(), ERROR_PATH_NOT_FOUND);

        expectError(ACTION_COPY_FILE, name, ERROR_PATH_NOT_FOUND,
                    systemMessage(ERROR_PATH_NOT_FOUND));
        EXPECT_EQ(observer.updates.size(), 1u);
    }
}

TEST_P(FileCopyTest, FailsOverAReadOnlyTarget) {
    REQUIRES_ORDINARY_USER();
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY));
    ASSERT_TRUE(loadComponent(file()));

    EXPECT_EQ(runInMode(), ERROR_ACCESS_DENIED);

    expectError(ACTION_COPY_FILE, L"a.txt", ERROR_ACCESS_DENIED,
                systemMessage(ERROR_ACCESS_DENIED));
    EXPECT_EQ(readFile(target), "old");
}

TEST_P(FileCopyTest, LeavesAReadOnlyTargetReadOnly) {
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY));
    ASSERT_TRUE(loadComponent(file()));
    // A superuser could write it all the same.
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([](auto...) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    });

    EXPECT_EQ(runInMode(), ERROR_ACCESS_DENIED);

    EXPECT_EQ(copy.count, 1);
    EXPECT_EQ(readFile(target), "old");
    EXPECT_TRUE(GetFileAttributesW(target.c_str()) & FILE_ATTRIBUTE_READONLY);
}

TEST_P(FileCopyTest, RepeatsTheWholeCopyAtARetry) {
    ASSERT_TRUE(loadComponent(file()));
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto from, auto to, BOOL fail) {
        SetLastError(ERROR_WRITE_PROTECT);
        return copy.count < 3 ? FALSE : copy.real(from, to, fail);
    });
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY};

    EXPECT_EQ(runInMode(), 0);

    EXPECT_EQ(observer.failures.size(), 2u);
    EXPECT_EQ(observer.updates.size(), 3u);
    EXPECT_EQ(readFile(target), "new");
    expectNoError();
}

TEST_P(FileCopyTest, DoesNotEndTheRunWhenItIsNotVital) {
    ASSERT_TRUE(loadComponent("<File Name='a.txt' Source='absent' Vital='no'/>"));

    EXPECT_EQ(runInMode(), 0);

    expectError(ACTION_COPY_FILE, L"a.txt", ERROR_FILE_NOT_FOUND,
                systemMessage(ERROR_FILE_NOT_FOUND));
    EXPECT_THAT(observer.failures, IsEmpty());
}

/// Installs a file in a program whose directory the system can't tell; gives what was copied.
std::wstring sourceWithoutHostDirectory() {
    const TestFolder folder;
    CContext context;
    context.load(folder
                     .write(L"script.xml",
                            "<R><Product><Directory Path='C:\\app'><Component Id='C'>"
                            "<File Name='a.txt' Source='sub\\a.txt'/></Component></Directory>"
                            "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
                            "</InstallExecuteSequence></Product></R>")
                     .c_str());
    context.runMode = RUNMODE_INSTALL;
    std::wstring from;
    FakeCall<fileCalls, &FileCalls::GetModuleFileNameW> ask([](auto...) { return 0; });
    FakeCall<fileCalls, &FileCalls::CreateDirectoryW> make([](auto...) { return TRUE; });
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto existing, auto...) {
        from = existing;
        return TRUE;
    });
    context.getProduct()->run(&context);
    return from;
}

// In a process of its own, where no earlier test has made the directory known.
TEST(CFileMtElementDeathTest, TakesSourceByItselfWhenTheHostsDirectoryIsUnknown) {
    EXPECT_EXIT(std::exit(sourceWithoutHostDirectory() == L"sub\\a.txt" ? 0 : 1),
                testing::ExitedWithCode(0), "");
}

}  // namespace
