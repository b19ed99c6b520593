#include "motion/CRemoveDirectoryMtElement.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <optional>

#include "support/AllowedChildren.h"
#include "support/ChildProcess.h"
#include "support/Declarations.h"
#include "support/Failure.h"
#include "support/FakeCall.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "support/Text.h"
#include "support/Thrown.h"
#include "system/FileCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Notification = RecordingObserver::Notification;

namespace {

/// Runs scripts that remove `directory`.
class CRemoveDirectoryMtElementTest : public ScriptTest {
protected:
    /// Loads a script whose sequence holds one fragment of these children.
    bool loadFragment(const std::string& children, std::string_view variables = {}) {
        return loadProduct("<InstallExecuteSequence><Fragment Id='F'>" + children +
                               "</Fragment></InstallExecuteSequence>",
                           variables);
    }

    /// Loads a script that removes a directory, with further attributes.
    bool loadRemoval(const std::wstring& path, const std::string& attributes = {}) {
        context.unload();
        return loadFragment("<RemoveDirectory Id='R' Path='" + narrow(path) + "' " + attributes +
                            "/>");
    }

    XmlHandlePtr node() { return context.findElementById(L"RemoveDirectory", L"R"); }

    Failure failure() { return Failure(context.getProduct()->errorInfo); }

    const std::wstring directory = folder.path(L"gone");
};

// What the element asks of the script.

TEST_F(CRemoveDirectoryMtElementTest, DeclaresItsAttributesInOrder) {
    ASSERT_TRUE(loadRemoval(directory));
    const CRemoveDirectoryMtElement element(*node(), context);

    EXPECT_THAT(declaredBy(element), ElementsAre(Pair(L"Path", true), Pair(L"On", false),
                                                 Pair(L"Vital", false), Pair(L"Title", false)));
    EXPECT_THAT(derivedBy(element), IsEmpty());
}

TEST_F(CRemoveDirectoryMtElementTest, CannotBeMadeWithoutAPath) {
    ASSERT_TRUE(loadFragment("<RemoveDirectory Id='R' Title='t'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(
        failure(),
        messageFailure(L"Create Motion Element error:(RemoveDirectory,R) cant get the require "
                       L"explicit Pathattribute.(Fragment,F) cann't create child "
                       L"element(RemoveDirectory)"));
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CRemoveDirectoryMtElementTest, FailsWhenItsPathWasNeverRead) {
    folder.makeDirectory(L"gone");
    ASSERT_TRUE(loadRemoval(directory));
    CRemoveDirectoryMtElement element(*node(), context);
    context.getProduct()->observer = &observer;

    EXPECT_EQ(element.execute(context), -1);

    EXPECT_EQ(failure(), messageFailure(L"(RemoveDirectory,R) can't get Path attribute."));
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_TRUE(exists(directory));
}

TEST_F(CRemoveDirectoryMtElementTest, TakesNoChildren) {
    folder.makeDirectory(L"gone");
    ASSERT_TRUE(loadFragment("<RemoveDirectory Id='R' Path='" + narrow(directory) +
                             "'><Caution Title='a'/></RemoveDirectory>"));
    EXPECT_THAT(allowedChildren(CRemoveDirectoryMtElement(*node(), context)), IsEmpty());

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"(RemoveDirectory,R) has a illegal child element(Caution)");
    EXPECT_TRUE(exists(directory));
}

TEST_F(CRemoveDirectoryMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadFragment(""));
    const XmlHandlePtr fragment = context.findElementById(L"Fragment", L"F");

    EXPECT_EQ(thrownBy([&] { CRemoveDirectoryMtElement(*fragment, context); }),
              L"Failed to create element (Fragment,F)");
}

TEST_F(CRemoveDirectoryMtElementTest, RunsInEveryModeUnlessOnLimitsIt) {
    for (const int32_t mode : {0, 1, 2, 7}) {
        SCOPED_TRACE(mode);
        folder.makeDirectory(L"gone");

        ASSERT_TRUE(loadRemoval(directory, "On='uninstall'"));
        EXPECT_EQ(run(mode), 0);
        EXPECT_EQ(exists(directory), mode != RUNMODE_UNINSTALL);

        ASSERT_TRUE(loadRemoval(directory));
        EXPECT_EQ(run(mode), 0);
        EXPECT_FALSE(exists(directory));
    }
}

TEST_F(CRemoveDirectoryMtElementTest, PathIsNotJoinedToTheDirectoryAround) {
    const std::wstring other = folder.makeDirectory(L"app\\gone");
    folder.makeDirectory(L"gone");
    ASSERT_TRUE(loadProduct("<Directory Id='D' Path='" + narrow(folder.path(L"app")) +
                                "'><Component Id='C'><RemoveDirectory Path='#V'/></Component>"
                                "</Directory><InstallExecuteSequence><Feature>"
                                "<ComponentRef Id='C'/></Feature></InstallExecuteSequence>",
                            "<Variable Id='V' Type='string' Value='" + narrow(directory) + "'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_FALSE(exists(directory));
    EXPECT_TRUE(exists(other));
}

// What is removed.

TEST_F(CRemoveDirectoryMtElementTest, RemovesTheDirectoryWithAllThatItHolds) {
    folder.write(L"gone\\a.txt", "a");
    folder.write(L"gone\\deep\\down\\b.txt", "b");
    folder.makeDirectory(L"gone\\empty");
    const std::wstring readOnly = folder.write(L"gone\\deep\\c.txt", "c");
    ASSERT_TRUE(SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY));
    const std::wstring beside = folder.write(L"gone.txt", "beside");
    ASSERT_TRUE(loadRemoval(directory));

    EXPECT_EQ(run(), 0);

    EXPECT_FALSE(exists(directory));
    EXPECT_TRUE(exists(beside));
    EXPECT_EQ(failure(), noFailure);
}

TEST_F(CRemoveDirectoryMtElementTest, TakesAPathWithABackslashAtItsEnd) {
    folder.write(L"gone\\deep\\a.txt", "a");
    ASSERT_TRUE(loadRemoval(directory + L"\\"));

    EXPECT_EQ(run(), 0);

    EXPECT_FALSE(exists(directory));
}

TEST_F(CRemoveDirectoryMtElementTest, AbsentDirectoryCountsAsRemoved) {
    for (const std::wstring& path : {directory, directory + L"\\deep\\down"}) {
        ASSERT_TRUE(loadRemoval(path, "Title='t'"));
        observer.updates.clear();

        EXPECT_EQ(run(), 0);

        EXPECT_THAT(observer.updates,
                    ElementsAre(Notification{ACTION_REMOVE_DIRECTORY, path, L"t", 0}));
        EXPECT_EQ(failure(), noFailure);
    }
}

TEST_F(CRemoveDirectoryMtElementTest, EntersALinkToADirectory) {
    folder.write(L"gone\\link\\a.txt", "a");
    ASSERT_TRUE(loadRemoval(directory));
    FakeCall<fileCalls, &FileCalls::FindNextFileW> next([&](auto search, auto* entry) {
        const BOOL found = next.real(search, entry);
        if (entry->cFileName == std::wstring(L"link"))
            entry->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
        return found;
    });

    EXPECT_EQ(run(), 0);

    EXPECT_FALSE(exists(directory));
}

// What the host is told.

TEST_F(CRemoveDirectoryMtElementTest, TellsTheHostBeforeItRemoves) {
    folder.makeDirectory(L"gone");
    const LogFile log;
    ASSERT_TRUE(loadFragment("<Caution Title='c'/><RemoveDirectory Path='" + narrow(directory) +
                             "' Title='A title'/>"));
    std::vector<Notification> updatesBefore;
    FakeCall<fileCalls, &FileCalls::FindFirstFileW> find([&](auto... arguments) {
        updatesBefore = observer.updates;
        return find.real(arguments...);
    });

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(updatesBefore,
                ElementsAre(Notification{ACTION_CAUTION, L"", L"c", 0},
                            Notification{ACTION_REMOVE_DIRECTORY, directory, L"A title", 50}));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CRemoveDirectoryMtElementTest, LockedFileStaysWithItsDirectoriesAlone) {
    folder.write(L"gone\\a.txt", "a");
    folder.write(L"gone\\keep\\b.txt", "b");
    folder.write(L"gone\\z\\c.txt", "c");
    const LockedFile lock(folder.write(L"gone\\keep\\locked.txt", "locked"));
    ASSERT_TRUE(loadRemoval(directory, "Title='A title'"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(failure(), Failure(ACTION_REMOVE_DIRECTORY, directory, L"A title", 0xFFFFFFFF, L""));
    std::vector<std::wstring> left;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory))
        left.push_back(entry.path().wstring().substr(directory.size() + 1));
    EXPECT_THAT(left, ElementsAre(L"keep", L"keep\\locked.txt"));
}

TEST_F(CRemoveDirectoryMtElementTest, FailsOverWhatIsNoDirectory) {
    const std::wstring file = folder.write(L"file", "content");
    for (const std::wstring& path : {file, std::wstring()}) {
        SCOPED_TRACE(narrow(path));
        ASSERT_TRUE(loadRemoval(path));

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(failure(), Failure(ACTION_REMOVE_DIRECTORY, path, L"", 0xFFFFFFFF, L""));
    }
    EXPECT_EQ(readFile(file), "content");
}

TEST_F(CRemoveDirectoryMtElementTest, NeverReportsTheSystemsOwnCode) {
    folder.makeDirectory(L"gone");
    ASSERT_TRUE(loadRemoval(directory));
    FakeCall<fileCalls, &FileCalls::RemoveDirectoryW> remove([](auto...) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    });

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(failure(), Failure(ACTION_REMOVE_DIRECTORY, directory, L"", 0xFFFFFFFF, L""));
}

TEST_F(CRemoveDirectoryMtElementTest, VitalTellsWhetherAFailureEndsTheRun) {
    const LockedFile lock(folder.write(L"gone\\locked.txt", "locked"));
    const std::pair<std::string, int32_t> rows[] = {
        {"", -1}, {"Vital='yes'", -1}, {"Vital='no'", 0}, {"Vital='Yes'", 0}, {"Vital=''", 0}};
    for (const auto& [vital, result] : rows) {
        SCOPED_TRACE(vital);
        ASSERT_TRUE(loadRemoval(directory, vital));
        observer.failures.clear();

        EXPECT_EQ(run(), result);

        EXPECT_EQ(observer.failures.size(), result == 0 ? 0u : 1u);
        EXPECT_EQ(failure(), Failure(ACTION_REMOVE_DIRECTORY, directory, L"", 0xFFFFFFFF, L""));
    }
}

TEST_F(CRemoveDirectoryMtElementTest, RetryRemovesWhatIsLeft) {
    const std::wstring stuck = folder.write(L"gone\\deep\\stuck.txt", "stuck");
    std::optional<LockedFile> lock(stuck);
    ASSERT_TRUE(loadRemoval(directory));
    FakeCall<fileCalls, &FileCalls::DeleteFileW> remove([&](auto path) {
        if (remove.count == 3)
            lock.reset();
        return remove.real(path);
    });
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY};

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(observer.failures.size(), 2u);
    EXPECT_EQ(observer.updates.size(), 3u);
    EXPECT_FALSE(exists(directory));
    EXPECT_EQ(failure(), noFailure);
}

TEST_F(CRemoveDirectoryMtElementTest, TextsOf512CharactersEndTheProcess) {
    ASSERT_TRUE(loadRemoval(directory, "Title='" + std::string(511, 't') + "'"));
    EXPECT_EQ(run(), 0);

    ASSERT_TRUE(loadRemoval(directory, "Title='" + std::string(512, 't') + "'"));
    EXPECT_EXIT(run(), endedByInvalidParameter(), "");
}

}  // namespace
