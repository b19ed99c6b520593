#include "system/FileOperations.h"

#include <gmock/gmock.h>

#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/TestFolder.h"
#include "system/FileCalls.h"

using testing::ElementsAre;

namespace {

TEST(DeleteFileTest, DeletesAFile) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.txt", "a");

    EXPECT_EQ(deleteFile(path.c_str()), 0);

    EXPECT_FALSE(exists(path));
}

TEST(DeleteFileTest, AbsentFileCountsAsDeletedWithoutACall) {
    const TestFolder folder;
    FakeCall<fileCalls, &FileCalls::DeleteFileW> remove([](const wchar_t*) { return FALSE; });

    EXPECT_EQ(deleteFile(folder.path(L"absent").c_str()), 0);

    EXPECT_EQ(remove.count, 0);
}

TEST(CopyFileWithDelayTest, TellsThatTheRegistrationWasRefused) {
    const TestFolder folder;
    const LogFile log;
    const std::wstring source = folder.write(L"source", "new");
    const std::wstring target = folder.write(L"target", "old");
    FakeCall<fileCalls, &FileCalls::CopyFileW> copy([&](auto from, auto to, BOOL fail) {
        return to == target ? (SetLastError(32), FALSE) : copy.real(from, to, fail);
    });
    FakeCall<fileCalls, &FileCalls::MoveFileExW> move([](auto...) {
        SetLastError(5);
        return FALSE;
    });

    EXPECT_EQ(copyFileWithDelay(source.c_str(), target.c_str(), true), 5);

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] MoveFileEx error code=5"));
    EXPECT_EQ(readFile(target), "old");
}

}  // namespace
