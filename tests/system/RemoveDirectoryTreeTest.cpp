#include <gmock/gmock.h>

#include <deque>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/ChildProcess.h"
#include "support/FakeFileCalls.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/TestFolder.h"
#include "system/FileOperations.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(RemoveDirectoryTreeTest, RemovesADirectoryWithAllItHolds) {
    for (const wchar_t* end : {L"", L"\\", L"/"}) {
        SCOPED_TRACE(testing::PrintToString(end));
        const TestFolder folder;
        folder.write(L"d\\a.txt", "a");
        folder.write(L"d\\e\\b.txt", "b");
        folder.makeDirectory(L"d\\e\\empty");
        const std::wstring readOnly = folder.write(L"d\\e\\read-only.txt", "c");
        SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
        const std::wstring neighbour = folder.write(L"d2\\a.txt", "a");

        EXPECT_TRUE(removeDirectoryTree((folder.path(L"d") + end).c_str()));

        EXPECT_FALSE(exists(folder.path(L"d")));
        EXPECT_TRUE(exists(neighbour));
    }
}

TEST(RemoveDirectoryTreeTest, NullAndEmptyPathFailWithoutACall) {
    const FakeFind find([](auto...) { return INVALID_HANDLE_VALUE; });

    EXPECT_FALSE(removeDirectoryTree(nullptr));
    EXPECT_FALSE(removeDirectoryTree(L""));

    EXPECT_EQ(find.count, 0);
}

TEST(RemoveDirectoryTreeTest, AbsentDirectoryCountsAsRemovedWithoutACall) {
    const TestFolder folder;
    const FakeRemoveDirectory remove([](auto) { return FALSE; });

    EXPECT_TRUE(removeDirectoryTree(folder.path(L"absent").c_str()));
    EXPECT_TRUE(removeDirectoryTree(folder.path(L"absent\\d").c_str()));

    EXPECT_EQ(remove.count, 0);
}

TEST(RemoveDirectoryTreeTest, FailsWhenTheDirectoryCannotBeListed) {
    const LogFile log;
    for (const DWORD error :
         {ERROR_SUCCESS, ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_INVALID_NAME}) {
        const FakeFind find([&](auto...) {
            SetLastError(error);
            return INVALID_HANDLE_VALUE;
        });
        const FakeFindClose close([](auto) { return FALSE; });
        const FakeRemoveDirectory remove([](auto) { return answer(ERROR_SUCCESS); });

        EXPECT_FALSE(removeDirectoryTree(L"C:\\d")) << error;

        EXPECT_EQ(remove.count, 0) << error;
        EXPECT_EQ(close.count, 0) << error;
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(RemoveDirectoryTreeTest, LockedFileStaysWithItsDirectoriesAndNothingElse) {
    const LogFile log;
    const TestFolder folder;
    const std::wstring kept = folder.write(L"d\\e\\kept.txt", "k");
    const LockedFile held(kept);
    for (const wchar_t* name :
         {L"d\\a.txt", L"d\\z.txt", L"d\\e\\a.txt", L"d\\e\\z.txt", L"d\\c\\a.txt", L"d\\f\\a.txt"})
        folder.write(name, "x");

    EXPECT_FALSE(removeDirectoryTree(folder.path(L"d").c_str()));

    Paths left;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path()))
        left.push_back(entry.path().wstring());
    EXPECT_THAT(left, ElementsAre(folder.path(L"d"), folder.path(L"d\\e"), kept));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(RemoveDirectoryTreeTest, ClosesEverySearchBeforeItRemovesTheDirectory) {
    const TestFolder folder;
    folder.makeDirectory(L"d\\e");
    int open = 0;
    const FakeFind find([&](auto... arguments) {
        const HANDLE search = find.real(arguments...);
        open += search != INVALID_HANDLE_VALUE;
        return search;
    });
    const FakeFindClose close([&](HANDLE search) {
        --open;
        return close.real(search);
    });
    std::vector<int> openAtRemoval;
    const FakeRemoveDirectory remove([&](const wchar_t* path) {
        openAtRemoval.push_back(open);
        return remove.real(path);
    });

    EXPECT_TRUE(removeDirectoryTree(folder.path(L"d").c_str()));

    EXPECT_THAT(openAtRemoval, ElementsAre(1, 0)) << "the parent's search is open meanwhile";
}

/// Puts one made-up directory in place of the file system; all else in it is absent. Records what
/// is listed and removed.
class ListedDirectory {
public:
    struct Entry {
        std::wstring name;
        DWORD attributes;
    };

    ListedDirectory(std::wstring pattern, std::deque<Entry> entries)
        : pattern(std::move(pattern)), entries(std::move(entries)) {}

    Paths listed;
    Paths deleted;
    Paths removed;
    DWORD removeError = ERROR_SUCCESS;

private:
    HANDLE findFirst(const wchar_t* path, WIN32_FIND_DATAW* found) {
        const std::wstring sought = path;
        if (sought.back() == L'*')
            listed.push_back(sought);
        else
            return this;  // a file that is about to be deleted
        if (sought == pattern && giveNext(found))
            return this;
        SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }

    BOOL giveNext(WIN32_FIND_DATAW* found) {
        if (entries.empty())
            return answer(ERROR_NO_MORE_FILES);
        *found = {};
        found->dwFileAttributes = entries.front().attributes;
        entries.front().name.copy(found->cFileName, MAX_PATH - 1);
        entries.pop_front();
        return answer(ERROR_SUCCESS);
    }

    const std::wstring pattern;
    std::deque<Entry> entries;
    const FakeFind find{[this](auto path, auto found) { return findFirst(path, found); }};
    const FakeFindNext next{[this](auto, auto found) { return giveNext(found); }};
    const FakeFindClose close{[](auto) { return answer(ERROR_SUCCESS); }};
    const FakeDelete remove{[this](auto path) {
        deleted.push_back(path);
        return answer(ERROR_SHARING_VIOLATION);
    }};
    const FakeRemoveDirectory removeDirectory{[this](auto path) {
        removed.push_back(path);
        return answer(removeError);
    }};
};

constexpr DWORD file = FILE_ATTRIBUTE_ARCHIVE;
constexpr DWORD directory = FILE_ATTRIBUTE_DIRECTORY;

TEST(RemoveDirectoryTreeTest, ListsBehindABackslashAndRemovesThePathAsItCame) {
    const struct {
        const wchar_t* path;
        const wchar_t* pattern;
    } rows[] = {{L"C:\\d", L"C:\\d\\*"}, {L"C:\\d\\", L"C:\\d\\*"}, {L"C:/d/", L"C:/d/\\*"}};
    for (const auto& row : rows) {
        ListedDirectory listing(row.pattern, {{L".", directory}});

        EXPECT_TRUE(removeDirectoryTree(row.path));

        EXPECT_THAT(listing.listed, ElementsAre(row.pattern));
        EXPECT_THAT(listing.removed, ElementsAre(row.path));
    }
}

TEST(RemoveDirectoryTreeTest, TakesAllEntriesInTheirOrder) {
    ListedDirectory listing(L"C:\\d\\*", {{L"z", file}, {L"e", directory}, {L"a", file}});

    removeDirectoryTree(L"C:\\d");

    EXPECT_THAT(listing.deleted, ElementsAre(L"C:\\d\\z", L"C:\\d\\a"));
    EXPECT_THAT(listing.listed, ElementsAre(L"C:\\d\\*", L"C:\\d\\e\\*"));
}

TEST(RemoveDirectoryTreeTest, PassesOverTheDotEntriesAlone) {
    ListedDirectory listing(L"d\\*", {{L".", directory},
                                      {L"..", directory},
                                      {L"...", directory},
                                      {L".a", directory},
                                      {L"..b", file}});

    removeDirectoryTree(L"d");

    EXPECT_THAT(listing.listed, ElementsAre(L"d\\*", L"d\\...\\*", L"d\\.a\\*"));
    EXPECT_THAT(listing.deleted, ElementsAre(L"d\\..b"));
}

TEST(RemoveDirectoryTreeTest, EntersALinkToADirectory) {
    ListedDirectory listing(L"d\\*", {{L"link", directory | FILE_ATTRIBUTE_REPARSE_POINT}});

    removeDirectoryTree(L"d");

    EXPECT_THAT(listing.listed, ElementsAre(L"d\\*", L"d\\link\\*"));
}

TEST(RemoveDirectoryTreeTest, ResultIsThatOfTheDirectorysOwnRemoval) {
    for (const DWORD error : {ERROR_SUCCESS, ERROR_DIR_NOT_EMPTY, ERROR_PATH_NOT_FOUND}) {
        ListedDirectory listing(L"d\\*", {{L"undeletable", file}});
        listing.removeError = error;

        EXPECT_EQ(removeDirectoryTree(L"d"), error == ERROR_SUCCESS) << error;
    }
}

/// A path of that many characters, the last of which may be a separator.
std::wstring pathOf(size_t length, const std::wstring& end = {}) {
    const std::wstring drive = L"C:\\";
    return drive + std::wstring(length - drive.size() - end.size(), L'd') + end;
}

// A path is listed with "\*" behind it, of which a backslash at its end is a part.
TEST(RemoveDirectoryTreeTest, TakesPathsThatJustFit) {
    for (const std::wstring& path : {pathOf(257), pathOf(258, L"\\"), pathOf(257, L"/")}) {
        SCOPED_TRACE(path.size());
        const std::wstring pattern = path + (path.back() == L'\\' ? L"*" : L"\\*");
        ListedDirectory listing(pattern, {{L".", directory}});

        EXPECT_TRUE(removeDirectoryTree(path.c_str()));

        EXPECT_EQ(pattern.size(), 259u);
        EXPECT_THAT(listing.listed, ElementsAre(pattern));
        EXPECT_THAT(listing.removed, ElementsAre(path));
    }
}

TEST(RemoveDirectoryTreeTest, OversizePathEndsTheProcess) {
    for (const std::wstring& path : {pathOf(258), pathOf(259), pathOf(260), pathOf(5000),
                                     pathOf(259, L"\\"), pathOf(260, L"\\"), pathOf(258, L"/")}) {
        SCOPED_TRACE(path.size());
        const ListedDirectory listing(path + L"\\*", {{L".", directory}});

        EXPECT_EXIT(removeDirectoryTree(path.c_str()), endedByInvalidParameter(), "");
    }
}

TEST(RemoveDirectoryTreeTest, TakesPathsBelowThatJustFit) {
    const std::wstring longestFile = pathOf(259);
    const std::wstring longestDirectory = pathOf(257);
    ListedDirectory listing(
        L"C:\\*", {{longestFile.substr(3), file}, {longestDirectory.substr(3), directory}});

    EXPECT_TRUE(removeDirectoryTree(L"C:\\"));

    EXPECT_THAT(listing.deleted, ElementsAre(longestFile));
    EXPECT_THAT(listing.listed, ElementsAre(L"C:\\*", longestDirectory + L"\\*"));
}

TEST(RemoveDirectoryTreeTest, OversizePathBelowEndsTheProcess) {
    const std::pair<size_t, DWORD> rows[] = {
        {260, file}, {258, directory}, {259, directory}, {260, directory}};
    for (const auto& [length, attributes] : rows) {
        SCOPED_TRACE(length);
        const ListedDirectory listing(L"C:\\d\\*", {{std::wstring(length - 5, L'c'), attributes}});

        EXPECT_EXIT(removeDirectoryTree(L"C:\\d"), endedByInvalidParameter(), "");
    }
}

}  // namespace
