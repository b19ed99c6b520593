// Part of every test program: whatever its tests do, the machine is as it was when they have ended.

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "support/CommonPlaces.h"
#include "support/FolderPutAside.h"
#include "support/Inventory.h"
#include "support/LogFile.h"

namespace {

/// The lines of one inventory that the other lacks.
std::vector<std::wstring> onlyIn(const Inventory& one, const Inventory& other) {
    std::vector<std::wstring> lines;
    std::set_difference(one.begin(), one.end(), other.begin(), other.end(),
                        std::back_inserter(lines));
    return lines;
}

/// The places stay for the next test, and what a test holds there that ends its process. Wine's
/// desktop inherits the files of the first program that wants one, and outlives it by some seconds.
void clearCommonPlaces() {
    constexpr int patience = 3000;
    std::error_code failure;
    for (int looks = 0; looks < patience; ++looks) {
        std::filesystem::remove_all(commonFolder, failure);
        if (!failure)
            break;
        Sleep(10);
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, commonKey);
}

class UntouchedMachine : public testing::Environment {
public:
    void SetUp() override {
        // A program that a test starts from its own program belongs to that one's tests.
        if (GetEnvironmentVariableW(inCharge, nullptr, 0) != 0)
            return;
        SetEnvironmentVariableW(inCharge, L"1");
        clearCommonPlaces();
        log.emplace(logFolder);
        before = takeInventory();
    }

    void TearDown() override {
        if (!before)
            return;
        clearCommonPlaces();
        const Inventory after = takeInventory();
        EXPECT_THAT(onlyIn(after, *before), testing::IsEmpty()) << "is left behind";
        EXPECT_THAT(onlyIn(*before, after), testing::IsEmpty()) << "is gone";
        log.reset();
        before.reset();
        SetEnvironmentVariableW(inCharge, nullptr);
    }

private:
    static constexpr wchar_t inCharge[] = L"TEMZ_TESTS_IN_CHARGE";

    std::optional<Inventory> before;
    std::optional<FolderPutAside> log;  ///< of an earlier run of the engine
};

const auto* const environment = testing::AddGlobalTestEnvironment(new UntouchedMachine);

}  // namespace
