#include "support/FolderPutAside.h"

#include <gtest/gtest.h>

#include <optional>

#include "support/TestFolder.h"

namespace {

class FolderPutAsideTest : public testing::Test {
protected:
    const TestFolder parent;
    const std::wstring folder = parent.path(L"kept");
};

TEST_F(FolderPutAsideTest, ComesBackWithAllThatItHolds) {
    parent.write(L"kept\\deep\\a.txt", "old");
    {
        const FolderPutAside aside(folder);
        EXPECT_FALSE(exists(folder));

        parent.write(L"kept\\deep\\a.txt", "new");
        parent.write(L"kept\\b.txt", "new");
    }
    EXPECT_EQ(readFile(folder + L"\\deep\\a.txt"), "old");
    EXPECT_FALSE(exists(folder + L"\\b.txt"));
}

TEST_F(FolderPutAsideTest, IsGoneAfterwardsWhenItWasNotThere) {
    {
        const FolderPutAside aside(folder);
        parent.write(L"kept\\a.txt", "new");
    }
    EXPECT_FALSE(exists(folder));
}

TEST_F(FolderPutAsideTest, ComesBackThoughAnEarlierProgramEndedTooSoon) {
    parent.write(L"kept\\a.txt", "old");
    // Never destroyed.
    alignas(FolderPutAside) unsigned char memory[sizeof(FolderPutAside)];
    new (memory) FolderPutAside(folder);
    parent.write(L"kept\\a.txt", "left by that program");
    { const FolderPutAside aside(folder); }

    EXPECT_EQ(readFile(folder + L"\\a.txt"), "old");
}

}  // namespace
