#include <gmock/gmock.h>
#include <windows.h>

#include "support/HostTest.h"
#include "support/LockedFile.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

/// A product whose script removes the directory that it was installed in.
class RemovedDirectoryTest : public HostTest {
protected:
    bool loadRemoval(const std::string& attributes = {}) {
        return load("<Script><Product><Directory Id='D' Path='" + narrow(app()) +
                    "'/><InstallExecuteSequence><Fragment><RemoveDirectory Path='[D]' " +
                    attributes + "/></Fragment></InstallExecuteSequence></Product></Script>");
    }
};

TEST_F(RemovedDirectoryTest, IsGoneWithAllThatItHeld) {
    const std::wstring readOnly = folder.write(L"app\\deep\\a.txt", "a");
    folder.write(L"app\\b.txt", "b");
    ASSERT_TRUE(SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY));
    ASSERT_TRUE(loadRemoval("Title='A title'"));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_FALSE(exists(app()));
    EXPECT_THAT(observer.updates,
                ElementsAre(RecordingObserver::Notification{15, app() + L"\\", L"A title", 0}));
}

TEST_F(RemovedDirectoryTest, MayHaveBeenGoneBefore) {
    ASSERT_TRUE(loadRemoval());

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(RemovedDirectoryTest, KeepsOnlyWhatIsInUse) {
    folder.write(L"app\\a.txt", "a");
    folder.write(L"app\\deep\\b.txt", "b");
    ASSERT_TRUE(loadRemoval());
    {
        const LockedFile lock(folder.write(L"app\\deep\\locked.txt", "locked"));
        EXPECT_EQ(run(RUNMODE_UNINSTALL), -1);
    }

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"deep\\locked.txt", "locked")));
    ASSERT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(observer.failures.front().code, 15u);
    EXPECT_EQ(observer.failures.front().systemError, 0xFFFFFFFFu);
}

TEST_F(RemovedDirectoryTest, DoesNotEndTheRunWhenItIsNotVital) {
    const LockedFile lock(folder.write(L"app\\locked.txt", "locked"));
    ASSERT_TRUE(loadRemoval("Vital='no'"));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_THAT(observer.failures, IsEmpty());
}

}  // namespace
