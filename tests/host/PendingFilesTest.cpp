#include "host/PendingFiles.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "support/Requirements.h"
#include "support/Restart.h"
#include "support/TestFolder.h"

namespace {

/// Replacements that really wait, among those of others.
class PendingFilesTest : public testing::Test {
protected:
    void SetUp() override {
        REQUIRES_WINE("leaves replacements to the next restart, which takes elevation");
    }

    static void leave(const std::wstring& from, const wchar_t* to) {
        EXPECT_TRUE(
            MoveFileExW(from.c_str(), to, MOVEFILE_DELAY_UNTIL_REBOOT | MOVEFILE_REPLACE_EXISTING));
    }

    /// Has a staged file wait as the engine does it.
    void stage() const { leave(folder.write(L"a.txt!@#$%", "new"), target.c_str()); }

    const TakesBackReplacements replacements;
    const TestFolder folder;
    const std::wstring target = folder.path(L"a.txt");
};

TEST_F(PendingFilesTest, AreFoundByTheirTargetWhateverItsCase) {
    EXPECT_FALSE(isReplacementPending(target));

    stage();

    EXPECT_TRUE(isReplacementPending(target));
    EXPECT_TRUE(isReplacementPending(folder.path(L"A.TXT")));
    EXPECT_FALSE(isReplacementPending(folder.path(L"b.txt")));
}

TEST_F(PendingFilesTest, AreNotThoseThatOthersHaveLeft) {
    leave(folder.write(L"a.new", ""), target.c_str());
    leave(folder.write(L"a.txt!@#$%", ""), nullptr);

    EXPECT_FALSE(isReplacementPending(target));
}

TEST_F(PendingFilesTest, AreNotThoseWhoseStagedFileIsGone) {
    stage();

    DeleteFileW(folder.path(L"a.txt!@#$%").c_str());

    EXPECT_FALSE(isReplacementPending(target));
}

TEST_F(PendingFilesTest, AreTakenBackAloneAndWithTheStagedFile) {
    leave(folder.write(L"before.txt", ""), nullptr);
    const auto before = pendingReplacements();
    stage();

    EXPECT_TRUE(dropReplacement(target));

    EXPECT_FALSE(isReplacementPending(target));
    EXPECT_EQ(pendingReplacements(), before);
    EXPECT_FALSE(exists(folder.path(L"a.txt!@#$%")));
}

TEST_F(PendingFilesTest, LeaveWhatComesBehindThem) {
    stage();
    leave(folder.write(L"behind.txt", ""), nullptr);
    leave(folder.write(L"b.txt!@#$%", ""), folder.path(L"b.txt").c_str());

    EXPECT_TRUE(dropReplacement(target));

    EXPECT_FALSE(isReplacementPending(target));
    EXPECT_TRUE(isReplacementPending(folder.path(L"b.txt")));
}

TEST_F(PendingFilesTest, LeaveNoEmptyListBehind) {
    ASSERT_FALSE(pendingReplacements());
    stage();

    EXPECT_TRUE(dropReplacement(target));

    EXPECT_FALSE(pendingReplacements());
}

TEST_F(PendingFilesTest, NeedNotBeThereToBeTakenBack) {
    folder.write(L"a.txt!@#$%", "");

    EXPECT_TRUE(dropReplacement(target));

    EXPECT_TRUE(exists(folder.path(L"a.txt!@#$%")));
}

}  // namespace
