#include "system/TextFields.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>

#include "support/ChildProcess.h"

namespace {

/// A field of 8 characters that can be read only: whoever writes to it, or behind it, ends with
/// an access violation.
wchar_t* readOnlyField() {
    static void* const page = VirtualAlloc(nullptr, 1, MEM_COMMIT | MEM_RESERVE, PAGE_READONLY);
    return static_cast<wchar_t*>(page);
}

/// A text whose terminator is the last that can be read: whoever looks behind it ends with an
/// access violation.
template <class Character, size_t size>
const Character* textBeforeUnreadablePage(const Character (&text)[size]) {
    constexpr size_t pageSize = 4096;
    auto* const pages = static_cast<std::byte*>(
        VirtualAlloc(nullptr, 2 * pageSize, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
    DWORD before = 0;
    EXPECT_TRUE(VirtualProtect(pages + pageSize, pageSize, PAGE_NOACCESS, &before));
    auto* const place = reinterpret_cast<Character*>(pages + pageSize - sizeof text);
    std::copy_n(text, size, place);
    return place;
}

TEST(CopyBoundedTest, CopiesTheTextWithItsTerminator) {
    wchar_t field[] = L"xxxxxxx";

    copyBounded(field, L"abc");

    EXPECT_EQ(std::wstring(field, 8), std::wstring(L"abc\0xxx\0", 8));
}

TEST(CopyBoundedTest, FillsTheFieldToItsLastCharacter) {
    wchar_t field[] = L"xxxxxxx";

    copyBounded(field, 4, L"abc");
    EXPECT_STREQ(field, L"abc");
    EXPECT_EQ(field[4], L'x');

    copyBounded(field, L"");
    EXPECT_STREQ(field, L"");
}

TEST(CopyBoundedTest, ReadsNothingBehindTheText) {
    wchar_t field[8];
    copyBounded(field, textBeforeUnreadablePage(L"abc"));
    EXPECT_STREQ(field, L"abc");

    char narrowField[8];
    copyBounded(narrowField, textBeforeUnreadablePage("abc"));
    EXPECT_STREQ(narrowField, "abc");
}

TEST(CopyBoundedTest, OversizeTextEndsTheProcessUnwritten) {
    EXPECT_EXIT(copyBounded(readOnlyField(), 8, L"12345678"), endedByInvalidParameter(), "");
    EXPECT_EXIT(copyBounded(readOnlyField(), 8, std::wstring(5000, L'x').c_str()),
                endedByInvalidParameter(), "");
}

TEST(CopyBoundedTest, NullEndsTheProcess) {
    EXPECT_EXIT(copyBounded(readOnlyField(), 8, nullptr), endedByInvalidParameter(), "");
    EXPECT_EXIT(copyBounded(nullptr, 8, L"a"), endedByInvalidParameter(), "");
}

TEST(CopyBoundedTest, KeepsTheSameRulesForNarrowText) {
    char field[] = "xxxxxxx";
    copyBounded(field, "abc");
    EXPECT_EQ(std::string(field, 8), std::string("abc\0xxx\0", 8));
    copyBounded(field, 4, "def");
    EXPECT_EQ(std::string(field, 8), std::string("def\0xxx\0", 8));

    char* const readOnly = reinterpret_cast<char*>(readOnlyField());
    EXPECT_EXIT(copyBounded(readOnly, 8, "12345678"), endedByInvalidParameter(), "");
    EXPECT_EXIT(copyBounded(readOnly, 8, nullptr), endedByInvalidParameter(), "");
}

TEST(FailInvalidParameterTest, EndsTheProcessAtOnce) {
    EXPECT_EXIT(failInvalidParameter(), endedByInvalidParameter(), "");
}

TEST(CopyCutTest, CopiesATextThatFits) {
    wchar_t field[] = L"xxxxxxx";

    copyCut(field, L"1234567");
    EXPECT_STREQ(field, L"1234567");

    copyCut(field, L"");
    EXPECT_STREQ(field, L"");
}

TEST(CopyCutTest, CutsATextThatDoesNotFit) {
    wchar_t field[] = L"xxxxxxx";

    copyCut(field, 4, L"12345678");

    EXPECT_STREQ(field, L"123");
    EXPECT_EQ(field[4], L'x');
}

TEST(AssignTextTest, AssignsTheText) {
    std::wstring target = L"old";

    assignText(target, L"new");

    EXPECT_EQ(target, L"new");
}

TEST(AssignTextTest, NullAssignsAnEmptyText) {
    std::wstring target = L"old";

    assignText(target, nullptr);

    EXPECT_EQ(target, L"");
}

class CopyFieldTextTest : public testing::Test {
protected:
    CopyFieldTextTest() { std::fill(std::begin(field), std::end(field), L'x'); }

    wchar_t field[514];  ///< longer than a record's field, to see what is written behind one
};

TEST_F(CopyFieldTextTest, CopiesAndTerminates) {
    copyFieldText(field, 512, L"abc");

    EXPECT_STREQ(field, L"abc");
    EXPECT_EQ(field[4], L'x');
}

TEST_F(CopyFieldTextTest, CutsAt511Characters) {
    for (const size_t length : {511u, 512u, 600u}) {
        copyFieldText(field, 512, std::wstring(length, L'a').c_str());

        EXPECT_EQ(field, std::wstring(511, L'a')) << length;
        EXPECT_EQ(field[512], L'x') << length;
    }
}

TEST_F(CopyFieldTextTest, IgnoresTheSize) {
    for (const size_t size : {0u, 2u, 10000u}) {
        copyFieldText(field, size, std::wstring(600, L'a').c_str());

        EXPECT_EQ(field, std::wstring(511, L'a')) << size;
        EXPECT_EQ(field[512], L'x') << size;
    }
}

TEST_F(CopyFieldTextTest, NullChangesNothing) {
    copyFieldText(field, 512, nullptr);
    copyFieldText(nullptr, 512, L"a");

    EXPECT_EQ(std::count(std::begin(field), std::end(field), L'x'), 514);
}

}  // namespace
