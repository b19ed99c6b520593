#include "motion/CFileMtElement.h"

#include <gmock/gmock.h>

#include <functional>
#include <utility>

#include "support/Declarations.h"
#include "support/FakeCall.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/PayloadFolder.h"
#include "support/ScriptTest.h"
#include "support/Sleeper.h"
#include "support/Text.h"
#include "system/ClockCalls.h"
#include "system/FileCalls.h"
#include "system/FileOperations.h"
#include "system/ProcessCalls.h"
#include "system/TextCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::Values;
using Notification = RecordingObserver::Notification;

namespace {

constexpr int32_t unknownMode = 7;

/// Runs scripts that install `source`, which holds "new", as `target`.
class CFileMtElementTest : public ScriptTest {
protected:
    /// A `File` for the target, with further attributes.
    std::string file(const std::string& attributes = {}) const {
        return "<File Id='F' Name='a.txt' Source='" + narrow(source) + "' " + attributes + "/>";
    }

    /// Loads a script whose one component holds the elements, in the directory of the target.
    bool loadComponent(const std::string& elements, const std::string& attributes = {}) {
        return loadProduct("<Directory Path='" + narrow(folder.path(L"app")) +
                           "'><Component Id='C' " + attributes + ">" + elements +
                           "</Component></Directory>"
                           "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
                           "</InstallExecuteSequence>");
    }

    void expectError(uint32_t code, const std::wstring& text1, uint32_t systemError,
                     const std::wstring& message) {
        const ErrorInfo& error = context.getProduct()->errorInfo;
        EXPECT_EQ(error.code, code);
        EXPECT_EQ(error.text1, text1);
        EXPECT_STREQ(error.text2, L"");
        EXPECT_EQ(error.systemError, systemError);
        EXPECT_EQ(error.message, message);
    }

    /// What an execution leaves at its start, and a success keeps.
    void expectNoError() { expectError(ERROR_CODE_MESSAGE, L"", 0, L""); }

    const PayloadFolder payload;
    const std::wstring source = payload.write(L"a.txt", "new");
    const std::wstring target = folder.path(L"app\\a.txt");
};

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

class FileCopyTest : public CFileMtElementTest, public testing::WithParamInterface<RunMode> {
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
    ASSERT_TRUE(loadComponent(file()));

    EXPECT_EQ(runInMode(), ERROR_PATH_NOT_FOUND);

    expectError(ACTION_COPY_FILE, L"a.txt", ERROR_PATH_NOT_FOUND,
                systemMessage(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(observer.updates.size(), 1u);
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

// Uninstall.

class FileDeleteTest : public CFileMtElementTest {
protected:
    int32_t uninstall() { return run(RUNMODE_UNINSTALL); }
};

TEST_F(FileDeleteTest, DeletesTheFileAndNothingElse) {
    folder.write(L"app\\a.txt", "old");
    const std::wstring other = folder.write(L"app\\b.txt", "other");
    ASSERT_TRUE(loadComponent(file()));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_FALSE(exists(target));
    EXPECT_TRUE(exists(other));
    EXPECT_TRUE(exists(testProgramDirectory() + L"\\" + source));
    expectNoError();
}

TEST_F(FileDeleteTest, LeavesTheEmptyDirectoryBehind) {
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(loadComponent(file()));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_TRUE(exists(folder.path(L"app")));
}

TEST_F(FileDeleteTest, CountsAnAbsentFileAsDeleted) {
    ASSERT_TRUE(loadComponent(file()));

    EXPECT_EQ(uninstall(), 0);

    expectNoError();
    EXPECT_FALSE(exists(folder.path(L"app")));
}

TEST_F(FileDeleteTest, NeedsNoSourceFile) {
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(loadComponent("<File Name='a.txt' Source='absent'/>"));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_FALSE(exists(target));
}

TEST_F(FileDeleteTest, AnnouncesEachDeletionWithItsProgress) {
    ASSERT_TRUE(loadComponent(file() + "<File Name='b.txt' Source='" + narrow(source) + "'/>"));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_DELETE_FILE, L"a.txt", L"", 0},
                                              Notification{ACTION_DELETE_FILE, L"b.txt", L"", 50}));
}

TEST_F(FileDeleteTest, LogsTheDeletionAfterItsAnnouncementAndBeforeItIsDone) {
    const LogFile log;
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(loadComponent(file()));
    std::vector<std::string> linesBefore;
    FakeCall<fileCalls, &FileCalls::DeleteFileW> remove([&](auto path) {
        linesBefore = log.lines();
        return remove.real(path);
    });

    // Without an observer the announcement is a line of its own.
    context.runMode = RUNMODE_UNINSTALL;
    EXPECT_EQ(context.getProduct()->run(&context), 0);

    EXPECT_THAT(linesBefore, ElementsAre("[WARNNING] Observer is NULL in subject.",
                                         "[WARNNING] delete file " + narrow(target)));
}

TEST_F(FileDeleteTest, LogsNullForATargetThatCannotBeConverted) {
    const LogFile log;
    ASSERT_TRUE(loadComponent(file()));
    FakeCall<textCalls, &TextCalls::WideCharToMultiByte> convert(
        [&](UINT page, DWORD flags, LPCWCH text, auto... rest) {
            return text == target ? 0 : convert.real(page, flags, text, rest...);
        });

    EXPECT_EQ(uninstall(), 0);

    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] delete file null"));
}

TEST_F(FileDeleteTest, DeletesAReadOnlyFile) {
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY));
    ASSERT_TRUE(loadComponent(file()));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_FALSE(exists(target));
}

TEST_F(FileDeleteTest, FailsOverALockedFileAlsoWhenADelayIsAllowed) {
    folder.write(L"app\\a.txt", "old");
    const LockedFile lock(target);
    ASSERT_TRUE(loadComponent(file("SupportDelayInstall='yes'")));
    FakeCall<fileCalls, &FileCalls::MoveFileExW> move([](auto...) { return TRUE; });

    EXPECT_EQ(uninstall(), -1);

    expectError(ACTION_DELETE_FILE, L"a.txt", 0, L"");
    EXPECT_EQ(move.count, 0);
    EXPECT_FALSE(context.getProduct()->rebootRequired);
    EXPECT_TRUE(exists(target));
}

// Ending the program that runs from the target.

/// A run with `KillProcess` in any mode, where the wait behind the end takes no time.
class FileKillTest : public CFileMtElementTest, public testing::WithParamInterface<int32_t> {
protected:
    int32_t runInMode() { return run(GetParam()); }

    /// The result of a run in which nothing goes wrong.
    static int32_t usualResult() { return GetParam() == unknownMode ? -1 : 0; }

    /// What the log holds but for the deletion's own line.
    std::vector<std::string> linesOfSearch() const {
        std::vector<std::string> lines = log.lines();
        std::erase(lines, "[WARNNING] delete file " + narrow(target));
        return lines;
    }

    const std::string killFile = file("KillProcess='yes'");
    const LogFile log;
    std::vector<DWORD> waits;
    std::function<void()> onWait = [] {};
    const FakeCall<clockCalls, &ClockCalls::Sleep> sleep{[this](DWORD milliseconds) {
        waits.push_back(milliseconds);
        onWait();
    }};
};

INSTANTIATE_TEST_SUITE_P(AnyMode, FileKillTest,
                         Values(RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE, unknownMode),
                         [](const auto& mode) { return "Mode" + std::to_string(mode.param); });

TEST_P(FileKillTest, EndsTheProgramAndWaitsBeforeAnythingElse) {
    const Sleeper sleeper(target);
    ASSERT_TRUE(loadComponent(killFile));
    onWait = [&] {
        EXPECT_TRUE(sleeper.waitUntilEnded());
        EXPECT_THAT(log.lines(), IsEmpty());
        EXPECT_THAT(observer.updates, IsEmpty());
    };

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_THAT(waits, ElementsAre(1000u));
    EXPECT_THAT(linesOfSearch(),
                ElementsAre("[INFO] Kill process (" + narrow(target) + ") success."));
    expectNoError();
}

TEST_P(FileKillTest, DoesNotWaitWhenNoSuchProgramRuns) {
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(loadComponent(killFile));

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_THAT(waits, IsEmpty());
    EXPECT_THAT(linesOfSearch(), IsEmpty());
}

TEST_P(FileKillTest, SparesAProgramOfTheSameNameElsewhere) {
    const std::wstring elsewhere = folder.path(L"elsewhere\\a.txt");
    const Sleeper sleeper(elsewhere);
    ASSERT_TRUE(loadComponent(killFile));

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_TRUE(sleeper.isRunning());
    EXPECT_THAT(linesOfSearch(), IsEmpty());
}

TEST_P(FileKillTest, GoesOnWhenTheProgramCannotBeEnded) {
    const Sleeper sleeper(target);
    ASSERT_TRUE(loadComponent(killFile));
    FakeCall<processCalls, &ProcessCalls::TerminateProcess> end([](auto...) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    });

    const int32_t result = runInMode();

    const bool copies = GetParam() == RUNMODE_INSTALL || GetParam() == RUNMODE_UPGRADE;
    EXPECT_EQ(result, copies ? ERROR_SHARING_VIOLATION : -1);
    EXPECT_THAT(linesOfSearch(),
                ElementsAre("[WARNNING] Failed to kill process(" + narrow(target) + ")"));
    EXPECT_THAT(waits, IsEmpty());
    EXPECT_EQ(observer.updates.size(), GetParam() == unknownMode ? 0u : 1u);
}

TEST_P(FileKillTest, GoesOnWhenTheSearchFails) {
    ASSERT_TRUE(loadComponent(killFile));
    FakeCall<processCalls, &ProcessCalls::CreateToolhelp32Snapshot> search([](auto...) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return INVALID_HANDLE_VALUE;
    });

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_THAT(linesOfSearch(), ElementsAre("[ERROR] CreateToolhelp32Snapshot error:8"));
    EXPECT_THAT(waits, IsEmpty());
}

TEST_P(FileKillTest, SearchesForTheExactWordOfTheFileAlone) {
    struct Row {
        std::string onFile;
        std::string onComponent;
        int searches;
    };
    const Row rows[] = {
        {"", "", 0},
        {"KillProcess='no'", "", 0},
        {"KillProcess='Yes'", "", 0},
        {"KillProcess='YES'", "", 0},
        {"KillProcess='yes '", "", 0},
        {"KillProcess='ye'", "", 0},
        {"KillProcess='true'", "", 0},
        {"KillProcess='1'", "", 0},
        {"KillProcess=''", "", 0},
        {"", "KillProcess='yes'", 0},
        {"KillProcess='yes'", "", 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("file: " + row.onFile + ", component: " + row.onComponent);
        context.unload();
        ASSERT_TRUE(loadComponent(file(row.onFile), row.onComponent));
        FakeCall<processCalls, &ProcessCalls::CreateToolhelp32Snapshot> search(
            [](auto...) { return INVALID_HANDLE_VALUE; });

        runInMode();

        EXPECT_EQ(search.count, row.searches);
    }
}

TEST_P(FileKillTest, EndsOneOfTwoProgramsAtEachAttempt) {
    const Sleeper first(target);
    const Sleeper second(target);
    ASSERT_TRUE(loadComponent(killFile));
    std::vector<bool> secondRuns;
    onWait = [&] {
        EXPECT_TRUE((waits.size() == 1 ? first : second).waitUntilEnded());
        secondRuns.push_back(second.isRunning());
    };
    observer.answers = {ANSWER_RETRY};

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_THAT(secondRuns, ElementsAre(true, false));
    EXPECT_THAT(waits, ElementsAre(1000u, 1000u));
}

}  // namespace
