#include "host/FileHolders.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "support/LockedFile.h"
#include "support/Requirements.h"
#include "support/TestFolder.h"

namespace {

TEST(FileHoldersTest, AreThoseThatTheRestartManagerNames) {
    REQUIRES_WINDOWS("has a restart manager that knows who holds a file");
    const TestFolder folder;
    const std::wstring held = folder.write(L"held.txt", "");
    const LockedFile lock(held);
    const std::wstring thisProcess = L" (" + std::to_wstring(GetCurrentProcessId()) + L")";

    EXPECT_THAT(holdersOf(held), testing::ElementsAre(testing::EndsWith(thisProcess)));
}

TEST(FileHoldersTest, AreNoneWhereTheRestartManagerKnowsNobody) {
    REQUIRES_WINE("has a restart manager that answers every question and knows nobody");
    const TestFolder folder;
    const std::wstring held = folder.write(L"held.txt", "");
    const LockedFile lock(held);

    EXPECT_THAT(holdersOf(held), testing::IsEmpty());
}

TEST(FileHoldersTest, AreNoneOfAFileThatNobodyHoldsOrThatIsNotThere) {
    const TestFolder folder;
    EXPECT_THAT(holdersOf(folder.write(L"free.txt", "")), testing::IsEmpty());
    EXPECT_THAT(holdersOf(folder.path(L"none.txt")), testing::IsEmpty());
}

}  // namespace
