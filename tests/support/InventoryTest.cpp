#include "support/Inventory.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "support/Requirements.h"
#include "support/Restart.h"
#include "support/TemporaryKey.h"
#include "support/TestService.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// What has come to the machine since the test began.
class InventoryTest : public testing::Test {
protected:
    std::vector<std::wstring> news() const {
        std::vector<std::wstring> lines;
        for (const std::wstring& line : takeInventory())
            if (!before.contains(line))
                lines.push_back(line);
        return lines;
    }

    const Inventory before = takeInventory();
};

TEST_F(InventoryTest, IsTheSameWhenNothingHasChanged) {
    EXPECT_THAT(news(), IsEmpty());
}

TEST_F(InventoryTest, HoldsWhatLiesInTheRootDirectory) {
    ASSERT_TRUE(CreateDirectoryW(L"C:\\temz-left", nullptr));

    EXPECT_THAT(news(), ElementsAre(L"C:\\temz-left"));

    RemoveDirectoryW(L"C:\\temz-left");
}

TEST_F(InventoryTest, HoldsTheKeysOfPrograms) {
    const TemporaryKey key(HKEY_CURRENT_USER, L"Software\\temz-left");

    EXPECT_THAT(news(), ElementsAre(L"HKEY_CURRENT_USER\\Software\\temz-left"));
}

TEST_F(InventoryTest, HoldsWhatConcernsAllUsers) {
    REQUIRES_WINE("changes the machine");
    const TemporaryKey program(HKEY_LOCAL_MACHINE, L"Software\\temz-left");
    const TemporaryKey kind(HKEY_CLASSES_ROOT, L".temz-left");
    const TestService service;

    EXPECT_THAT(news(), ElementsAre(L"HKEY_CLASSES_ROOT\\.temz-left",
                                    L"HKEY_LOCAL_MACHINE\\Software\\temz-left",
                                    std::wstring(L"the service ") + service.name()));
}

TEST_F(InventoryTest, HoldsWhatWaitsForARestartUntilThatIsTakenBack) {
    REQUIRES_WINE("leaves a replacement to the next restart");
    for (const wchar_t* name : {L"a.txt", L"b.txt"}) {
        const Inventory earlier = takeInventory();
        {
            const TakesBackReplacements replacements;
            MoveFileExW(name, nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
            EXPECT_THAT(news(), ElementsAre(HasSubstr(name)));
        }
        EXPECT_EQ(takeInventory(), earlier);
    }
}

}  // namespace
