#include "author/Folder.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "support/TestFolder.h"

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

namespace {

// That a link isn't followed is tested with check-reports.sh, which can make one.
class FolderTest : public testing::Test {
protected:
    std::optional<Folder> read(const std::wstring& name) {
        return readFolder(folder.path(name), unread);
    }

    TestFolder folder;
    UnreadFolder unread;
};

TEST_F(FolderTest, IsReadWithAllThatIsInIt) {
    folder.write(L"p\\b", "");
    folder.write(L"p\\a", "");
    SetFileAttributesW(folder.write(L"p\\in\\c", "").c_str(), FILE_ATTRIBUTE_HIDDEN);
    folder.makeDirectory(L"p\\empty");

    const Folder read = this->read(L"p\\").value_or(Folder{});

    EXPECT_EQ(read.name, L"p");
    EXPECT_THAT(read.files,
                ElementsAre(Field(&FolderFile::name, L"a"), Field(&FolderFile::name, L"b")));
    EXPECT_FALSE(read.files[0].resists);
    EXPECT_THAT(read.folders,
                ElementsAre(Field(&Folder::name, L"empty"), Field(&Folder::name, L"in")));
    EXPECT_TRUE(read.folders[1].files.at(0).resists);
}

TEST_F(FolderTest, IsNotReadWhereThereIsNone) {
    EXPECT_FALSE(read(L"missing"));
    EXPECT_EQ(unread.path, folder.path(L"missing"));
    EXPECT_EQ(unread.error, static_cast<uint32_t>(ERROR_PATH_NOT_FOUND));
}

}  // namespace
