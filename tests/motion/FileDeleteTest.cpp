#include <gmock/gmock.h>

#include "support/ChildProcess.h"
#include "support/FakeCall.h"
#include "support/FileElementTest.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/Text.h"
#include "system/FileCalls.h"
#include "system/TextCalls.h"

using testing::ElementsAre;
using Notification = RecordingObserver::Notification;

namespace {

class FileDeleteTest : public FileElementTest {
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

TEST_F(FileDeleteTest, AnnouncesANameThatJustFits) {
    const std::wstring longest(511, L'n');
    ASSERT_TRUE(loadComponent("<File Name='" + narrow(longest) + "' Source='s'/>"));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_DELETE_FILE, longest, L"", 0}));
}

TEST_F(FileDeleteTest, EndsTheProcessWhenTheNameIsTooLongToAnnounce) {
    ASSERT_TRUE(loadComponent("<File Name='" + std::string(512, 'n') + "' Source='s'/>"));

    EXPECT_EXIT(uninstall(), endedByInvalidParameter(), "");
}

TEST_F(FileDeleteTest, NeedsNoDirectoryInThePath) {
    ASSERT_TRUE(loadIn("", file()));
    std::vector<std::wstring> sought;
    const FakeCall<fileCalls, &FileCalls::FindFirstFileW> find([&](auto path, auto) {
        sought.push_back(path);
        return INVALID_HANDLE_VALUE;
    });

    EXPECT_EQ(uninstall(), 0);

    EXPECT_THAT(sought, ElementsAre(L"a.txt"));
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

}  // namespace
