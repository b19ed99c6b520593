#include "system/PathText.h"

#include <gtest/gtest.h>

#include "support/ChildProcess.h"
#include "support/FakeCall.h"
#include "system/ClockCalls.h"

namespace {

TEST(JoinPathTest, PutsOneSeparatorBetweenDirectoryAndName) {
    const struct {
        const wchar_t* directory;
        const wchar_t* name;
        const wchar_t* joined;
    } rows[] = {
        {L"C:\\d", L"x", L"C:\\d\\x"},
        {L"C:\\d\\", L"x", L"C:\\d\\x"},
        {L"C:\\d/", L"x", L"C:\\d/x"},
        {L"C:/d", L"x", L"C:/d\\x"},
        {L"C:\\d", L"e\\x", L"C:\\d\\e\\x"},
        {L"C:\\d", L"\\x", L"C:\\d\\\\x"},
        {L"C:\\d\\", L"\\x", L"C:\\d\\\\x"},
        {L"d", L"", L"d\\"},
        {L"d\\", L"", L"d\\"},
        {L"\\", L"x", L"\\x"},
        {L"", L"x", L"x"},
        {L"", L"", L""},
    };
    for (const auto& row : rows)
        EXPECT_STREQ(joinPath(row.directory, row.name).get(), row.joined);
}

TEST(JoinPathTest, NullGivesNull) {
    EXPECT_EQ(joinPath(nullptr, L"x"), nullptr);
    EXPECT_EQ(joinPath(L"d", nullptr), nullptr);
    EXPECT_EQ(joinPath(nullptr, nullptr), nullptr);
}

TEST(ParentDirectoryTest, GivesTheTextBeforeTheLastSeparator) {
    const struct {
        const wchar_t* path;
        const wchar_t* parent;
    } rows[] = {
        {L"C:\\a\\b", L"C:\\a"}, {L"C:\\a/b", L"C:\\a"}, {L"C:/a\\b", L"C:/a"},
        {L"C:\\a\\", L"C:\\a"},  {L"C:\\a/", L"C:\\a"},  {L"C:\\a\\\\", L"C:\\a\\"},
        {L"C:\\a", L"C:"},       {L"a\\b", L"a"},        {L"a\\", L"a"},
        {L"\\\\", L"\\"},        {L"\\a\\b", L"\\a"},
    };
    for (const auto& row : rows)
        EXPECT_STREQ(parentDirectory(row.path).get(), row.parent) << row.path;
}

TEST(ParentDirectoryTest, NoSeparatorBehindTheFirstCharacterGivesNull) {
    for (const wchar_t* path :
         {static_cast<const wchar_t*>(nullptr), L"", L"a", L"\\", L"ab", L"\\x", L"/x", L"\\abc"})
        EXPECT_EQ(parentDirectory(path), nullptr) << testing::PrintToString(path);
}

TEST(SamePathTest, IgnoresCaseKindOfSeparatorAndSeparatorsAtTheEnd) {
    const struct {
        const wchar_t* left;
        const wchar_t* right;
    } rows[] = {
        {L"C:\\a", L"C:\\a"},
        {L"C:\\a\\", L"c:/A"},
        {L"C:\\a/\\//", L"C:\\a"},
        {L"a/b\\c", L"A\\B/C"},
        {L"\u00C4pfel\\\u0416", L"\u00E4PFEL\\\u0436"},
        {L"", L""},
        {L"", L"\\/"},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(samePath(row.left, row.right)) << row.left << ", " << row.right;
        EXPECT_TRUE(samePath(row.right, row.left)) << row.right << ", " << row.left;
    }
}

TEST(SamePathTest, TellsOtherPathsApart) {
    const struct {
        const wchar_t* left;
        const wchar_t* right;
    } rows[] = {
        {L"C:\\a", L"C:\\b"},
        {L"C:\\a", L"C:\\ab"},
        {L"C:\\a", L"C:\\a\\b"},
        {L"C:\\a\\\\b", L"C:\\a\\b"},
        {L"", L"a"},
        {L"a", L"a\\."},
        {L"a b", L"a\\b"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(samePath(row.left, row.right)) << row.left << ", " << row.right;
        EXPECT_FALSE(samePath(row.right, row.left)) << row.right << ", " << row.left;
    }
}

/// Lets the local time be what `moment` holds.
class MakeStampedNameTest : public testing::Test {
protected:
    SYSTEMTIME moment = {2026, 11, 6, 14, 7, 3, 9, 500};
    bool readable = true;

private:
    const FakeCall<clockCalls, &ClockCalls::GetLocalTime> now{[this](SYSTEMTIME* local) {
        if (readable)
            *local = moment;
    }};
};

std::wstring stampedName(const wchar_t* path) {
    std::wstring name = L"old";
    makeStampedName(path, name);
    return name;
}

TEST_F(MakeStampedNameTest, PutsTheUnpaddedTimeBeforeTheLastDot) {
    inFreshProcess([] {
        const struct {
            const wchar_t* path;
            const wchar_t* stamped;
        } rows[] = {
            {L"link.lnk", L"link20261114739.lnk"},
            {L"link", L"link20261114739"},
            {L"C:\\a.b\\c.d.ico", L"C:\\a.b\\c.d20261114739.ico"},
            {L"C:\\a.b\\c", L"C:\\a20261114739.b\\c"},
            {L".x", L"20261114739.x"},
            {L"x.", L"x20261114739."},
            {L"", L"20261114739"},
            {nullptr, L"20261114739"},
        };
        for (const auto& row : rows)
            EXPECT_EQ(stampedName(row.path), row.stamped);
    });
}

TEST_F(MakeStampedNameTest, UsesTheStampOfTheFirstCallFromThenOn) {
    inFreshProcess([this] {
        const std::wstring first = stampedName(L"a.ico");
        moment.wHour += 1;
        EXPECT_EQ(stampedName(L"a.ico"), first);
        readable = false;
        EXPECT_EQ(stampedName(L"a.ico"), first);
    });
}

TEST_F(MakeStampedNameTest, ReadsTheTimeAgainAfterAFailure) {
    inFreshProcess([this] {
        readable = false;
        EXPECT_EQ(stampedName(L"a.ico"), L"a.ico");
        EXPECT_EQ(stampedName(nullptr), L"");
        EXPECT_STREQ(nameStamp(), L"");
        readable = true;
        EXPECT_EQ(stampedName(L"a.ico"), L"a20261114739.ico");
        EXPECT_STREQ(nameStamp(), L"20261114739");
    });
}

}  // namespace
