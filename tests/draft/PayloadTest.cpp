#include "author/draft/Payload.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "support/TestFolder.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class PayloadTest : public testing::Test {
protected:
    std::optional<Payload> read(const std::wstring& path) {
        UnreadFolder unread;
        const std::optional<Folder> read = readFolder(path, unread);
        EXPECT_TRUE(read) << unread.error;
        return payloadOf(read.value_or(Folder{}), notes, problem);
    }
    Payload read() { return read(folder.path(L"p")).value_or(Payload{}); }

    TestFolder folder;
    Notes notes;
    std::wstring problem;
};

TEST_F(PayloadTest, IsReadInTheOrderOfCodeUnits) {
    for (const wchar_t* name : {L"p\\b.txt", L"p\\a.txt", L"p\\C.txt", L"p\\\u00E4.txt",
                                L"p\\_.txt", L"p\\y\\1", L"p\\Z\\1"})
        folder.write(name, "");

    const Payload payload = read();

    EXPECT_EQ(payload.name, L"p");
    EXPECT_THAT(payload.files, ElementsAre(L"C.txt", L"_.txt", L"a.txt", L"b.txt", L"\u00E4.txt"));
    ASSERT_EQ(payload.folders.size(), 2u);
    EXPECT_EQ(payload.folders[0].name, L"Z");
    EXPECT_EQ(payload.folders[1].name, L"y");
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(PayloadTest, HasItsNameHoweverItIsSpelt) {
    folder.write(L"p\\a.txt", "");
    for (const wchar_t* spelling : {L"p\\", L"p/", L"p\\.", L"p\\in\\.."})
        EXPECT_EQ(read(folder.path(spelling)).value_or(Payload{}).name, L"p") << spelling;
}

TEST_F(PayloadTest, LeavesOutFoldersWithoutFilesAndSaysSo) {
    folder.write(L"p\\a.txt", "");
    folder.makeDirectory(L"p\\empty\\inner");

    EXPECT_THAT(read().folders, IsEmpty());
    EXPECT_THAT(notes, ElementsAre(HasSubstr(L"empty holds no files")));
}

TEST_F(PayloadTest, WarnsOfFilesThatCannotBeUpgraded) {
    SetFileAttributesW(folder.write(L"p\\in\\a.txt", "").c_str(), FILE_ATTRIBUTE_READONLY);
    SetFileAttributesW(folder.write(L"p\\in\\b.txt", "").c_str(), FILE_ATTRIBUTE_NORMAL);

    EXPECT_THAT(read().folders.at(0).files, ElementsAre(L"a.txt", L"b.txt"));
    EXPECT_THAT(notes, ElementsAre(HasSubstr(L"Clear that: attrib -r -h \"p\\in\\a.txt\"")));
    SetFileAttributesW(folder.path(L"p\\in\\a.txt").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(PayloadTest, MustHoldAFile) {
    folder.makeDirectory(L"p\\in");

    EXPECT_FALSE(read(folder.path(L"p")));
    EXPECT_EQ(problem, L"p holds no files.");
}

TEST_F(PayloadTest, MustHaveAName) {
    EXPECT_FALSE(payloadOf(Folder{L"", {{L"a.txt"}}, {}, {}}, notes, problem));
    EXPECT_EQ(problem, L"A whole drive can't be installed; name a folder in it.");
}

TEST_F(PayloadTest, LeavesOutLinksAndSaysSo) {
    const Folder linked{L"p", {}, {{L"in", {{L"a.txt"}}, {}, {L"loop"}}}, {}};

    EXPECT_TRUE(payloadOf(linked, notes, problem));
    EXPECT_THAT(notes, ElementsAre(L"in\\loop is a link to a folder, and left out."));
}

TEST_F(PayloadTest, RefusesNamesThatWindowsDoesNotKeep) {
    const std::wstring path = folder.makeDirectory(L"p\\in") + L"\\dot.";
    const std::wstring exact = L"\\\\?\\" + path;
    const HANDLE file = CreateFileW(exact.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    CloseHandle(file);

    EXPECT_FALSE(read(folder.path(L"p")));
    EXPECT_EQ(
        problem,
        L"p\\in\\dot. can't be installed: Windows drops dots and blanks at the end of a name.");
    DeleteFileW(exact.c_str());
}

TEST_F(PayloadTest, RefusesFoldersOfNamesThatWindowsDoesNotKeep) {
    const Folder dotted{L"p", {}, {{L"in.", {{L"a.txt", false}}, {}, {}}}, {}};
    EXPECT_FALSE(payloadOf(dotted, notes, problem));
    EXPECT_EQ(problem,
              L"p\\in. can't be installed: Windows drops dots and blanks at the end of a name.");
}

TEST(NameTest, IsOneThatWindowsKeeps) {
    for (const wchar_t* name : {L"a", L"a b", L" a", L".a", L"a#[&]'%!@", L"com0", L"com10",
                                L"com;", L"console", L"lpt", L"nullify.txt", L"\u4E2D\xD83D\xDE00"})
        EXPECT_EQ(faultOfName(name), L"") << name;
    for (const wchar_t* name :
         {L"", L"a.", L"a ", L"a\tb", L"a:b", L"a*", L"a?", L"a|b", L"a<b", L"a>b", L"a\"b", L"a/b",
          L"a\\b", L"con", L"NUL.txt", L"Com1", L"lpt9.a.b", L"\xD83D"})
        EXPECT_NE(faultOfName(name), L"") << name;
}

}  // namespace
