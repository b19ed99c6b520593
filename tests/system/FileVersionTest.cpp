#include "system/FileVersion.h"

#include <gmock/gmock.h>

#include <optional>

#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/TestFolder.h"
#include "support/VersionedFile.h"
#include "system/VersionCalls.h"

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

class GetFileVersionTest : public testing::Test {
protected:
    /// The version of a file, none when it can't be read.
    static std::optional<uint64_t> read(const std::wstring& path) {
        constexpr uint64_t untouched = 4711;
        uint64_t version = untouched;
        if (getFileVersion(path.c_str(), version))
            return version;
        EXPECT_EQ(version, untouched);
        return {};
    }

    std::wstring place(const std::wstring& version) const {
        const std::wstring path = folder.path(version + L".dll");
        placeVersionedFile(path, version);
        return path;
    }

    const TestFolder folder;
    const LogFile log;
};

TEST_F(GetFileVersionTest, GivesTheFourFieldsOfTheNumber) {
    EXPECT_EQ(read(place(L"1.2.0.0")), 0x0001'0002'0000'0000u);
    EXPECT_EQ(read(place(L"1.10.0.0")), 0x0001'000A'0000'0000u);
    EXPECT_EQ(read(place(L"32768.3.32769.4")), 0x8000'0003'8001'0004u);
}

TEST_F(GetFileVersionTest, WritesTheNumberToTheLogInTwoUnsignedHalves) {
    read(place(L"1.10.0.0"));
    read(place(L"32768.3.32769.4"));

    EXPECT_THAT(log.lines(), ElementsAre("[INFO] File Version MS:65546 LS:0",
                                         "[INFO] File Version MS:2147483651 LS:2147549188"));
}

TEST_F(GetFileVersionTest, FindsNoneInAFileWithoutVersionData) {
    EXPECT_EQ(read(folder.write(L"a.txt", "1.2.0.0")), std::nullopt);

    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] Failed to GetFileVersionInfoSize"));
}

TEST_F(GetFileVersionTest, FindsNoneWhereThereIsNoFile) {
    place(L"1.2.0.0");

    for (const wchar_t* name : {L"absent.dll", L"1.2.0.0.*", L"*.dll", L""})
        EXPECT_EQ(read(folder.path(name)), std::nullopt) << testing::PrintToString(name);

    EXPECT_THAT(log.lines(), SizeIs(4));
    EXPECT_THAT(log.lines(), Each("[WARNNING] Failed to GetFileVersionInfoSize"));
}

TEST_F(GetFileVersionTest, AsksForABlockOfTheSizeThatItWasTold) {
    const std::wstring path = place(L"1.2.0.0");
    DWORD told = 0;
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoSizeW> size(
        [&](const wchar_t* file, DWORD* handle) {
            EXPECT_NE(handle, nullptr);
            return told = size.real(file, handle);
        });
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoW> info(
        [&](const wchar_t* file, DWORD handle, DWORD length, void* block) {
            EXPECT_EQ(file, path);
            EXPECT_EQ(handle, 0u);
            EXPECT_EQ(length, told);
            return info.real(file, handle, length, block);
        });

    EXPECT_TRUE(read(path));

    EXPECT_EQ(info.count, 1);
}

TEST_F(GetFileVersionTest, FailsWhenTheBlockCannotBeRead) {
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoW> info([](auto...) {
        SetLastError(ERROR_SUCCESS);
        return FALSE;
    });

    EXPECT_EQ(read(place(L"1.2.0.0")), std::nullopt);

    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] Failed to GetFileVersionInfo"));
}

TEST_F(GetFileVersionTest, FailsWhenTheBlockHasNoRoot) {
    const FakeCall<versionCalls, &VersionCalls::VerQueryValueW> query(
        [](const void*, const wchar_t* name, void**, UINT* length) {
            EXPECT_STREQ(name, L"\\");
            EXPECT_NE(length, nullptr);
            SetLastError(ERROR_SUCCESS);
            return FALSE;
        });

    EXPECT_EQ(read(place(L"1.2.0.0")), std::nullopt);

    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] Failed to VerQueryValue"));
    EXPECT_EQ(query.count, 1);
}

TEST_F(GetFileVersionTest, ComparesAsANumberWithWhatATextMeans) {
    const uint64_t second = *read(place(L"1.2.0.0"));
    const uint64_t tenth = *read(place(L"1.10.0.0"));
    const uint64_t large = *read(place(L"32768.3.32769.4"));

    EXPECT_EQ(second, parseVersionText(L"1.2"));
    EXPECT_GT(tenth, parseVersionText(L"1.9"));
    EXPECT_GT(large, parseVersionText(L"32767.65535.65535.65535"));
    EXPECT_EQ(large, parseVersionText(L"32768.3.32769.4"));
}

TEST(ParseVersionTextTest, JoinsTheFieldsOfAText) {
    struct Row {
        const wchar_t* text;
        uint64_t version;
    };
    const Row rows[] = {
        {L"1", 0x0001'0000'0000'0000},
        {L"1.2", 0x0001'0002'0000'0000},
        {L"1.2.3", 0x0001'0002'0003'0000},
        {L"1.2.3.4", 0x0001'0002'0003'0004},
        {L"65535.65535.65535.65535", 0xFFFF'FFFF'FFFF'FFFF},
        {L"007.0.0.010", 0x0007'0000'0000'000A},
        // Whatever follows the fourth dot is ignored.
        {L"1.2.3.4.5", 0x0001'0002'0003'0004},
        {L"1.2.3.4.", 0x0001'0002'0003'0004},
        {L"1.2.3.4.x", 0x0001'0002'0003'0004},
        // The first bad piece ends the reading.
        {L"", 0},
        {L"abc", 0},
        {L" 1.2", 0},
        {L"+1.2", 0},
        {L"0x1.2", 0},
        {L".1.2", 0},
        {L"-.1", 0},
        {L"1.", 0x0001'0000'0000'0000},
        {L"1.2.", 0x0001'0002'0000'0000},
        {L"1..3", 0x0001'0000'0000'0000},
        {L"1.x.3", 0x0001'0000'0000'0000},
        {L"1.2x.3", 0x0001'0000'0000'0000},
        {L"1.2.3.4x", 0x0001'0002'0003'0000},
        {L"1.2.3 .4", 0x0001'0002'0000'0000},
        {L"1,2", 0},
        // A piece reaches into the fields above it, and what leaves the number is lost.
        {L"-1", 0xFFFF'0000'0000'0000},
        {L"1.2.3.-1", 0xFFFF'FFFF'FFFF'FFFF},
        {L"0.-1.0.1", 0xFFFF'FFFF'0000'0001},
        {L"70000", 0x1170'0000'0000'0000},
        {L"2.65536", 0x0003'0000'0000'0000},
        {L"1.65536", 0x0001'0000'0000'0000},
        {L"0.0.0.4294967296", 0x0000'0000'7FFF'FFFF},
        {L"0.0.0.-2147483649", 0xFFFF'FFFF'8000'0000},
    };
    for (const Row& row : rows)
        EXPECT_EQ(parseVersionText(row.text), row.version) << testing::PrintToString(row.text);
}

}  // namespace
