#include "system/SystemFacts.h"

#include <gmock/gmock.h>

#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "system/SystemCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

FARPROC function(void WINAPI getInfo(SYSTEM_INFO*)) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(getInfo));
}

template <WORD architecture>
void WINAPI giveArchitecture(SYSTEM_INFO* info) {
    info->wProcessorArchitecture = architecture;
}

TEST(IsNative64BitTest, DependsOnTheArchitectureOfTheProcessor) {
    const struct {
        const char* name;
        FARPROC getInfo;
        bool is64Bit;
    } rows[] = {
        {"AMD64", function(&giveArchitecture<9>), true},
        {"IA64", function(&giveArchitecture<6>), true},
        {"Intel", function(&giveArchitecture<0>), false},
        {"ARM", function(&giveArchitecture<5>), false},
        {"IA32 on Win64", function(&giveArchitecture<10>), false},
        {"ARM64", function(&giveArchitecture<12>), false},
        {"unknown", function(&giveArchitecture<0xFFFF>), false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const FakeCall<systemCalls, &SystemCalls::GetProcAddress> find(
            [&](auto...) { return row.getInfo; });

        EXPECT_EQ(isNative64Bit(), row.is64Bit);
    }
}

TEST(IsNative64BitTest, IsFalseOnASystemThatCannotTell) {
    const FakeCall<systemCalls, &SystemCalls::GetProcAddress> find(
        [](HMODULE module, const char* name) {
            EXPECT_EQ(module, GetModuleHandleW(L"kernel32.dll"));
            EXPECT_STREQ(name, "GetNativeSystemInfo");
            return FARPROC{};
        });

    EXPECT_FALSE(isNative64Bit());

    EXPECT_EQ(find.count, 1);
}

TEST(IsNative64BitTest, IsTrueWhereA64BitProgramRuns) {
    EXPECT_TRUE(isNative64Bit());
}

TEST(GetOsVersionTest, GivesTheVersionAndTheRecord) {
    const FakeCall<systemCalls, &SystemCalls::GetVersionExW> getVersion([](OSVERSIONINFOW* record) {
        EXPECT_EQ(record->dwOSVersionInfoSize, 276u);
        record->dwMajorVersion = 10;
        record->dwMinorVersion = 3;
        record->dwBuildNumber = 19045;
        return TRUE;
    });
    uint32_t major = 0;
    uint32_t minor = 0;
    OSVERSIONINFOW record{};

    EXPECT_TRUE(getOsVersion(major, minor, record));

    EXPECT_EQ(major, 10u);
    EXPECT_EQ(minor, 3u);
    EXPECT_EQ(record.dwBuildNumber, 19045u);
}

TEST(GetOsVersionTest, LogsThatTheSystemDoesNotAnswer) {
    const LogFile log;
    const FakeCall<systemCalls, &SystemCalls::GetVersionExW> getVersion([](OSVERSIONINFOW* record) {
        record->dwMajorVersion = 10;
        record->dwMinorVersion = 3;
        return FALSE;
    });
    uint32_t major = 4711;
    uint32_t minor = 4712;
    OSVERSIONINFOW record{};

    EXPECT_FALSE(getOsVersion(major, minor, record));

    EXPECT_EQ(major, 4711u);
    EXPECT_EQ(minor, 4712u);
    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] Can't get OS version."));
}

TEST(GetOsVersionTest, AsksTheSystem) {
    const LogFile log;
    uint32_t major = 0;
    uint32_t minor = 4712;
    OSVERSIONINFOW record{};

    EXPECT_TRUE(getOsVersion(major, minor, record));

    EXPECT_GE(major, 5u);
    EXPECT_EQ(record.dwMajorVersion, major);
    EXPECT_EQ(record.dwMinorVersion, minor);
    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
