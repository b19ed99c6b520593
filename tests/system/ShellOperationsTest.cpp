#include "system/ShellOperations.h"

#include <gmock/gmock.h>

#include <vector>

#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "system/FileOperations.h"
#include "system/ShellCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A system that has all folders: each is named as its CSIDL value.
class ShellFoldersTest : public testing::Test {
protected:
    BOOL hasFolders = TRUE;
    FakeCall<shellCalls, &ShellCalls::SHGetSpecialFolderPathW> getPath{
        [this](HWND owner, wchar_t* path, int folder, BOOL create) {
            EXPECT_EQ(owner, nullptr);
            EXPECT_FALSE(create);
            wcscpy(path, (L"X:\\" + std::to_wstring(folder)).c_str());
            return hasFolders;
        }};
    const LogFile log;
};

using GetSpecialFolderTest = ShellFoldersTest;
using GetFolderPathTest = ShellFoldersTest;

TEST_F(GetSpecialFolderTest, KnowsSevenWords) {
    const struct {
        const wchar_t* word;
        const wchar_t* path;
    } rows[] = {
        {L"ProgramFilesFolder", L"X:\\38"}, {L"WindowsFolder", L"X:\\36"},
        {L"System32Folder", L"X:\\37"},     {L"SysWOW64Folder", L"X:\\41"},
        {L"StartMenuFolder", L"X:\\22"},    {L"ProgramMenuFolder", L"X:\\23"},
        {L"DesktopFolder", L"X:\\25"},
    };
    ASSERT_EQ(folderWords().size(), std::size(rows));
    for (size_t i = 0; i < std::size(rows); ++i) {
        std::wstring path;
        EXPECT_TRUE(getSpecialFolder(rows[i].word, path));
        EXPECT_EQ(path, rows[i].path);
        EXPECT_STREQ(folderWords()[i].word, rows[i].word);
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(GetSpecialFolderTest, ComparesWordsExactly) {
    for (const wchar_t* word :
         {L"programfilesfolder", L"PROGRAMFILESFOLDER", L"ProgramFilesFolder ", L"ProgramFiles",
          L"DesktopFolder\\", L"TemplatesFolder", L""}) {
        SCOPED_TRACE(word);
        std::wstring path = L"before";

        EXPECT_FALSE(getSpecialFolder(word, path));

        EXPECT_EQ(path, L"before");
    }
    EXPECT_EQ(getPath.count, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(GetSpecialFolderTest, LogsThatTheSystemDoesNotHaveTheFolder) {
    hasFolders = FALSE;
    std::wstring path = L"before";

    EXPECT_FALSE(getSpecialFolder(L"DesktopFolder", path));

    EXPECT_EQ(path, L"before");
    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] Failed to get the DesktopFolder"));
}

TEST_F(GetFolderPathTest, HasAnOperationForEachFurtherFolder) {
    const struct {
        bool (*get)(wchar_t* buffer);
        const wchar_t* path;
    } rows[] = {
        {&getLocalAppDataFolder, L"X:\\28"},
        {&getCommonAppDataFolder, L"X:\\35"},
        {&getCommonDocumentsFolder, L"X:\\46"},
        {&getCommonTemplatesFolder, L"X:\\45"},
        {&getTemplatesFolder, L"X:\\21"},
        {[](wchar_t* buffer) { return getFolderPath(999, buffer); }, L"X:\\999"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        wchar_t path[pathBufferLength] = L"";

        EXPECT_TRUE(row.get(path));

        EXPECT_STREQ(path, row.path);
    }
}

TEST(LongestFolderPathTest, FillsTheBufferToItsTerminator) {
    const std::wstring longest(pathBufferLength - 1, L'p');
    const FakeCall<shellCalls, &ShellCalls::SHGetSpecialFolderPathW> getPath(
        [&](HWND, wchar_t* path, int, BOOL) {
            wcscpy(path, longest.c_str());
            return TRUE;
        });
    std::wstring path;

    EXPECT_TRUE(getSpecialFolder(L"DesktopFolder", path));

    EXPECT_EQ(path, longest);
}

TEST_F(GetFolderPathTest, LeavesTheBufferSilentlyWhenTheSystemDoesNotHaveTheFolder) {
    hasFolders = FALSE;
    wchar_t path[pathBufferLength] = L"before";

    EXPECT_FALSE(getFolderPath(CSIDL_WINDOWS, path));

    EXPECT_STREQ(path, L"before");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(GetSpecialFolderOfTheSystemTest, GivesAPathWithoutASeparatorAtItsEnd) {
    wchar_t windows[MAX_PATH];
    GetWindowsDirectoryW(windows, MAX_PATH);
    std::wstring path;

    EXPECT_TRUE(getSpecialFolder(L"WindowsFolder", path));

    EXPECT_EQ(path, windows);
}

TEST(GetSpecialFolderOfTheSystemTest, LacksAFolderOfNoMeaning) {
    wchar_t path[pathBufferLength] = L"before";

    EXPECT_FALSE(getFolderPath(999, path));

    EXPECT_STREQ(path, L"before");
}

}  // namespace
