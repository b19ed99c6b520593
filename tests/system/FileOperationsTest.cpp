#include "system/FileOperations.h"

#include <gmock/gmock.h>

#include <deque>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/ChildProcess.h"
#include "support/FakeCall.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/TestFolder.h"
#include "system/FileCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using FakeFind = FakeCall<fileCalls, &FileCalls::FindFirstFileW>;
using FakeFindNext = FakeCall<fileCalls, &FileCalls::FindNextFileW>;
using FakeFindClose = FakeCall<fileCalls, &FileCalls::FindClose>;
using FakeDelete = FakeCall<fileCalls, &FileCalls::DeleteFileW>;
using FakeGetAttributes = FakeCall<fileCalls, &FileCalls::GetFileAttributesW>;
using FakeSetAttributes = FakeCall<fileCalls, &FileCalls::SetFileAttributesW>;
using FakeCopy = FakeCall<fileCalls, &FileCalls::CopyFileW>;
using FakeMove = FakeCall<fileCalls, &FileCalls::MoveFileExW>;
using FakeCreateDirectory = FakeCall<fileCalls, &FileCalls::CreateDirectoryW>;
using FakeRemoveDirectory = FakeCall<fileCalls, &FileCalls::RemoveDirectoryW>;
using FakeModuleFileName = FakeCall<fileCalls, &FileCalls::GetModuleFileNameW>;

using Paths = std::vector<std::wstring>;

/// What a faked call answers with this error: failure, or, without an error, success that leaves a
/// misleading one.
BOOL answer(DWORD error) {
    SetLastError(error == ERROR_SUCCESS ? ERROR_INVALID_DATA : error);
    return error == ERROR_SUCCESS;
}

/// A failure whose error the system doesn't tell.
BOOL failWithoutError() {
    SetLastError(ERROR_SUCCESS);
    return FALSE;
}

TEST(FileExistsTest, FindsFilesAndDirectories) {
    const TestFolder folder;

    EXPECT_TRUE(fileExists(folder.write(L"a.txt", "a").c_str()));
    EXPECT_TRUE(fileExists(folder.path().c_str()));
    EXPECT_FALSE(fileExists(folder.path(L"absent").c_str()));
    EXPECT_FALSE(fileExists(folder.path(L"absent\\a.txt").c_str()));
}

TEST(FileExistsTest, ClosesTheSearchOnlyWhenItFound) {
    const TestFolder folder;
    const FakeFindClose close([&](HANDLE search) { return close.real(search); });

    fileExists(folder.path(L"absent").c_str());
    EXPECT_EQ(close.count, 0);

    fileExists(folder.path().c_str());
    EXPECT_EQ(close.count, 1);
}

TEST(DeleteFileTest, DeletesAFile) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.txt", "a");

    EXPECT_EQ(deleteFile(path.c_str()), 0);

    EXPECT_FALSE(exists(path));
}

TEST(DeleteFileTest, AbsentFileCountsAsDeletedWithoutACall) {
    const TestFolder folder;
    const FakeDelete remove([](auto) { return FALSE; });

    EXPECT_EQ(deleteFile(folder.path(L"absent").c_str()), 0);
    EXPECT_EQ(deleteFile(folder.path(L"absent\\a.txt").c_str()), 0);

    EXPECT_EQ(remove.count, 0);
}

TEST(DeleteFileTest, FileThatCannotBeSoughtCountsAsDeleted) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.txt", "a");
    const FakeFind find([](auto...) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    });

    EXPECT_EQ(deleteFile(path.c_str()), 0);

    EXPECT_TRUE(exists(path));
}

TEST(DeleteFileTest, ClosesTheSearchBeforeItDeletes) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.txt", "a");
    const FakeFindClose close([&](HANDLE search) { return close.real(search); });
    const FakeDelete remove([&](const wchar_t* deleted) {
        EXPECT_EQ(close.count, 1);
        return remove.real(deleted);
    });

    EXPECT_EQ(deleteFile(path.c_str()), 0);

    EXPECT_EQ(remove.count, 1);
    EXPECT_EQ(close.count, 1);
}

TEST(DeleteFileTest, DeletesAReadOnlyFile) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.txt", "a");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);

    EXPECT_EQ(deleteFile(path.c_str()), 0);

    EXPECT_FALSE(exists(path));
}

TEST(DeleteFileTest, KeepsAllAttributesButTheReadOnlyOne) {
    constexpr DWORD others = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.txt", "a");
    const FakeGetAttributes get([](auto) { return FILE_ATTRIBUTE_READONLY | others; });
    const FakeSetAttributes set([&](const wchar_t* changed, DWORD attributes) {
        EXPECT_EQ(changed, path);
        EXPECT_EQ(attributes, others);
        return answer(ERROR_SUCCESS);
    });
    const FakeDelete remove([&](const wchar_t* deleted) {
        return set.count == 0 ? answer(ERROR_ACCESS_DENIED) : remove.real(deleted);
    });

    EXPECT_EQ(deleteFile(path.c_str()), 0);

    EXPECT_EQ(set.count, 1);
    EXPECT_FALSE(exists(path));
}

TEST(DeleteFileTest, LeavesTheAttributesOfAWritableFileAlone) {
    const TestFolder folder;
    const FakeGetAttributes get([](auto) { return INVALID_FILE_ATTRIBUTES; });

    EXPECT_EQ(deleteFile(folder.write(L"a.txt", "a").c_str()), 0);

    EXPECT_EQ(get.count, 0);
}

TEST(DeleteFileTest, FailsForALockedFile) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.txt", "a");
    const LockedFile held(path);

    EXPECT_EQ(deleteFile(path.c_str()), -1);

    EXPECT_TRUE(exists(path));
}

TEST(DeleteFileTest, GivesUpAtTheFirstCallThatHelpsNoFurther) {
    const struct {
        const char* reason;
        DWORD deleteError;
        DWORD attributes;
        DWORD setError;
        int deletions, attributesRead, attributesSet;
    } rows[] = {
        {"held by a program", ERROR_SHARING_VIOLATION, FILE_ATTRIBUTE_READONLY, 0, 1, 0, 0},
        {"no error told", ERROR_SUCCESS, FILE_ATTRIBUTE_READONLY, 0, 1, 0, 0},
        {"attributes unreadable", ERROR_ACCESS_DENIED, INVALID_FILE_ATTRIBUTES, 0, 1, 1, 0},
        {"not read-only", ERROR_ACCESS_DENIED, FILE_ATTRIBUTE_HIDDEN, 0, 1, 1, 0},
        {"attributes fixed", ERROR_ACCESS_DENIED, FILE_ATTRIBUTE_READONLY, 5, 1, 1, 1},
        {"denied again", ERROR_ACCESS_DENIED, FILE_ATTRIBUTE_READONLY, 0, 2, 1, 1},
    };
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.txt", "a");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reason);
        const FakeDelete remove([&](auto) {
            SetLastError(row.deleteError);
            return FALSE;
        });
        const FakeGetAttributes get([&](auto) { return row.attributes; });
        const FakeSetAttributes set([&](auto...) { return answer(row.setError); });

        EXPECT_EQ(deleteFile(path.c_str()), -1);

        EXPECT_EQ(remove.count, row.deletions);
        EXPECT_EQ(get.count, row.attributesRead);
        EXPECT_EQ(set.count, row.attributesSet);
    }
}

std::string narrow(const std::wstring& path) {
    return std::filesystem::path(path).string();
}

class CopyFileWithDelayTest : public testing::Test {
protected:
    int32_t copyWithDelay() { return copyFileWithDelay(source.c_str(), target.c_str(), true); }
    int32_t copyAtOnce() { return copyFileWithDelay(source.c_str(), target.c_str(), false); }

    const TestFolder folder;
    const LogFile log;
    const std::wstring source = folder.write(L"source.dll", "new");
    const std::wstring target = folder.write(L"target.dll", "old");
    const std::wstring staging = target + L"!@#$%";
};

TEST_F(CopyFileWithDelayTest, ReplacesTheTarget) {
    for (const bool delayAllowed : {false, true}) {
        writeFile(target, "old");

        EXPECT_EQ(copyFileWithDelay(source.c_str(), target.c_str(), delayAllowed), 0);

        EXPECT_EQ(readFile(target), "new");
        EXPECT_EQ(readFile(source), "new");
        EXPECT_FALSE(exists(staging));
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, MakesATargetThatWasNotThere) {
    deleteFile(target.c_str());

    EXPECT_EQ(copyAtOnce(), 0);

    EXPECT_EQ(readFile(target), "new");
}

TEST_F(CopyFileWithDelayTest, CopiesOnceWhenThatSucceeds) {
    const FakeCopy copy([&](std::wstring from, std::wstring to, BOOL failIfExists) {
        EXPECT_EQ(from, source);
        EXPECT_EQ(to, target);
        EXPECT_FALSE(failIfExists);
        return answer(ERROR_SUCCESS);
    });

    EXPECT_EQ(copyWithDelay(), 0);

    EXPECT_EQ(copy.count, 1);
}

TEST_F(CopyFileWithDelayTest, ClearsALeftoverStagingFile) {
    for (const DWORD attributes : {FILE_ATTRIBUTE_NORMAL, FILE_ATTRIBUTE_READONLY})
        for (const bool delayAllowed : {false, true}) {
            writeFile(staging, "stale");
            SetFileAttributesW(staging.c_str(), attributes);

            EXPECT_EQ(copyFileWithDelay(source.c_str(), target.c_str(), delayAllowed), 0);

            EXPECT_FALSE(exists(staging));
            EXPECT_EQ(readFile(target), "new");
        }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, ClearsTheStagingFileBeforeItCopies) {
    writeFile(staging, "stale");
    const FakeCopy copy([&](auto...) {
        EXPECT_FALSE(exists(staging));
        return answer(ERROR_DISK_FULL);
    });

    EXPECT_EQ(copyAtOnce(), ERROR_DISK_FULL);
}

TEST_F(CopyFileWithDelayTest, StuckStagingFileLeavesSourceAndTargetUntouched) {
    writeFile(staging, "stale");
    const LockedFile held(staging);
    const FakeCopy copy([](auto...) { return answer(ERROR_SUCCESS); });

    EXPECT_EQ(copyAtOnce(), -1);
    EXPECT_EQ(copyWithDelay(), -1);

    EXPECT_EQ(copy.count, 0);
    EXPECT_EQ(readFile(source), "new");
    EXPECT_EQ(readFile(target), "old");
    const std::string line = "[ERROR] Failed to delete File " + narrow(staging);
    EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST_F(CopyFileWithDelayTest, HeldTargetGivesTheErrorWhenNoDelayIsAllowed) {
    const LockedFile held(target);
    const FakeMove move([](auto...) { return answer(ERROR_SUCCESS); });

    EXPECT_EQ(copyAtOnce(), ERROR_SHARING_VIOLATION);

    EXPECT_FALSE(exists(staging));
    EXPECT_EQ(move.count, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, HeldTargetIsReplacedAtTheNextRestart) {
    const FakeMove move([&](std::wstring from, std::wstring to, DWORD flags) {
        EXPECT_EQ(from, staging);
        EXPECT_EQ(to, target);
        EXPECT_EQ(flags, 5u);
        return answer(ERROR_SUCCESS);
    });
    {
        const LockedFile held(target);
        EXPECT_EQ(copyWithDelay(), -2);
    }
    EXPECT_EQ(move.count, 1);
    EXPECT_EQ(readFile(staging), "new");
    EXPECT_EQ(readFile(target), "old");
    EXPECT_THAT(log.lines(),
                ElementsAre("[WARNNING] Succeed to MoveFileEx, file=" + narrow(source)));
}

TEST_F(CopyFileWithDelayTest, AnyFailureOfTheCopyIsAReasonForTheDelay) {
    for (const DWORD error : {ERROR_SUCCESS, ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED,
                              ERROR_SHARING_VIOLATION, ERROR_DISK_FULL}) {
        const FakeMove move([](auto...) { return answer(ERROR_SUCCESS); });
        const FakeCopy copy([&](auto from, auto to, BOOL failIfExists) {
            if (to != target)
                return copy.real(from, to, failIfExists);
            SetLastError(error);
            return FALSE;
        });

        EXPECT_EQ(copyWithDelay(), -2) << error;

        EXPECT_EQ(readFile(staging), "new") << error;
    }
}

TEST_F(CopyFileWithDelayTest, MissingSourceGivesTheErrorAndRegistersNothing) {
    deleteFile(source.c_str());
    const FakeCopy copy([&](auto... arguments) { return copy.real(arguments...); });
    const FakeMove move([](auto...) { return answer(ERROR_SUCCESS); });

    EXPECT_EQ(copyWithDelay(), ERROR_FILE_NOT_FOUND);

    EXPECT_EQ(copy.count, 2);
    EXPECT_EQ(move.count, 0);
    EXPECT_EQ(readFile(target), "old");
    EXPECT_FALSE(exists(staging));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, FailedStagingGivesItsOwnError) {
    const FakeCopy copy([&](auto, auto to, auto) {
        return answer(to == staging ? ERROR_DISK_FULL : ERROR_SHARING_VIOLATION);
    });

    EXPECT_EQ(copyWithDelay(), ERROR_DISK_FULL);
}

TEST_F(CopyFileWithDelayTest, FailedCopyWithoutAnErrorIsStillAFailure) {
    const FakeCopy copy([](auto...) { return failWithoutError(); });

    EXPECT_EQ(copyAtOnce(), -1);
    EXPECT_EQ(copyWithDelay(), -1);

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, TellsThatTheRegistrationWasRefused) {
    const LockedFile held(target);
    const FakeMove move([](auto...) { return answer(ERROR_ACCESS_DENIED); });

    EXPECT_EQ(copyWithDelay(), ERROR_ACCESS_DENIED);

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] MoveFileEx error code=5"));
}

TEST_F(CopyFileWithDelayTest, RefusedRegistrationWithoutAnErrorIsStillAFailure) {
    const LockedFile held(target);
    const FakeMove move([](auto...) { return failWithoutError(); });

    EXPECT_EQ(copyWithDelay(), -1);

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] MoveFileEx error code=0"));
}

TEST_F(CopyFileWithDelayTest, StagingFileOfARefusedRegistrationStaysUntilTheNextCall) {
    {
        const LockedFile held(target);
        const FakeMove move([](auto...) { return answer(ERROR_ACCESS_DENIED); });
        copyWithDelay();
    }
    EXPECT_EQ(readFile(staging), "new");
    EXPECT_EQ(readFile(target), "old");

    EXPECT_EQ(copyAtOnce(), 0);

    EXPECT_FALSE(exists(staging));
}

TEST(CreateDirectoriesTest, MakesADirectoryWithItsMissingParents) {
    const TestFolder folder;
    for (const wchar_t* name : {L"a", L"b\\c\\d", L"e/f/g", L"h\\i\\", L"j/k/"}) {
        SCOPED_TRACE(testing::PrintToString(name));
        const std::wstring path = folder.path() + L'\\' + name;

        EXPECT_TRUE(createDirectories(path.c_str()));

        EXPECT_TRUE(exists(path));
    }
}

TEST(CreateDirectoriesTest, ExistingDirectoryNeedsOneCall) {
    const TestFolder folder;
    const std::wstring inside = folder.write(L"a.txt", "a");
    const FakeCreateDirectory create([&](auto... arguments) { return create.real(arguments...); });

    EXPECT_TRUE(createDirectories(folder.path().c_str()));

    EXPECT_EQ(create.count, 1);
    EXPECT_TRUE(exists(inside));
}

TEST(CreateDirectoriesTest, NullAndEmptyPathFailWithoutACall) {
    const FakeCreateDirectory create([](auto...) { return answer(ERROR_SUCCESS); });

    EXPECT_FALSE(createDirectories(nullptr));
    EXPECT_FALSE(createDirectories(L""));

    EXPECT_EQ(create.count, 0);
}

TEST(CreateDirectoriesTest, DirectoryBelowAFileFails) {
    const TestFolder folder;
    const std::wstring file = folder.write(L"a.txt", "a");

    EXPECT_FALSE(createDirectories((file + L"\\b\\c").c_str()));
}

TEST(CreateDirectoriesTest, TriesTheParentsFromWithinAndThenTheWayBack) {
    constexpr DWORD ok = ERROR_SUCCESS, there = ERROR_ALREADY_EXISTS, no = ERROR_PATH_NOT_FOUND,
                    denied = ERROR_ACCESS_DENIED;
    const struct {
        const wchar_t* path;
        std::deque<DWORD> errors;  ///< of the calls, one by one
        Paths tried;
        bool made;
    } rows[] = {
        {L"a\\b", {ok}, {L"a\\b"}, true},
        {L"a\\b", {there}, {L"a\\b"}, true},
        {L"a\\b", {no, ok, ok}, {L"a\\b", L"a", L"a\\b"}, true},
        {L"a/b", {no, there, ok}, {L"a/b", L"a", L"a/b"}, true},
        {L"a\\b", {no, ok, there}, {L"a\\b", L"a", L"a\\b"}, true},
        {L"a\\b", {denied, ok, ok}, {L"a\\b", L"a", L"a\\b"}, true},
        {L"a\\b", {no, ok, denied}, {L"a\\b", L"a", L"a\\b"}, false},
        {L"a\\b", {no, denied}, {L"a\\b", L"a"}, false},
        {L"a\\b\\", {no, ok, there}, {L"a\\b\\", L"a\\b", L"a\\b\\"}, true},
        {L"a\\b/c", {no, no, ok, denied}, {L"a\\b/c", L"a\\b", L"a", L"a\\b"}, false},
        {L"a", {no}, {L"a"}, false},
        {L"\\a", {no}, {L"\\a"}, false},
        {L"/a/b", {no, no}, {L"/a/b", L"/a"}, false},
        {L"\\\\a", {no, no}, {L"\\\\a", L"\\"}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.path) + testing::PrintToString(row.errors));
        Paths tried;
        std::deque<DWORD> errors = row.errors;
        const FakeCreateDirectory create([&](const wchar_t* path, auto security) {
            EXPECT_EQ(security, nullptr);
            tried.push_back(path);
            const DWORD error = errors.empty() ? no : errors.front();
            if (!errors.empty())
                errors.pop_front();
            return answer(error);
        });

        EXPECT_EQ(createDirectories(row.path), row.made);

        EXPECT_EQ(tried, row.tried);
    }
}

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
}

TEST(RemoveDirectoryTreeTest, LockedFileStaysWithItsDirectoriesAndNothingElse) {
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

TEST(RemoveDirectoryTreeTest, TakesPathsThatJustFit) {
    const std::wstring path = L"C:\\" + std::wstring(254, L'd');  // 259 characters with "\*"
    const std::wstring child = std::wstring(255, L'c');
    {
        ListedDirectory listing(path + L"\\*", {{L".", directory}});
        EXPECT_TRUE(removeDirectoryTree(path.c_str()));
    }
    ListedDirectory listing(L"C:\\*", {{child + L"1", file}});
    EXPECT_TRUE(removeDirectoryTree(L"C:\\"));
    EXPECT_THAT(listing.deleted, ElementsAre(L"C:\\" + child + L"1"));
}

TEST(RemoveDirectoryTreeTest, OversizePathEndsTheProcess) {
    const std::wstring path = L"C:\\" + std::wstring(257, L'd');

    EXPECT_EXIT(removeDirectoryTree(path.c_str()), endedByInvalidParameter(), "");
}

TEST(RemoveDirectoryTreeTest, OversizePathBelowEndsTheProcess) {
    for (const DWORD attributes : {file, directory}) {
        const ListedDirectory listing(L"C:\\d\\*", {{std::wstring(255, L'c'), attributes}});

        EXPECT_EXIT(removeDirectoryTree(L"C:\\d"), endedByInvalidParameter(), "");
    }
}

TEST(DirectoryOfPathTest, GivesWhatStandsBeforeTheLastBackslash) {
    const struct {
        const wchar_t* path;
        const wchar_t* directory;
    } rows[] = {
        {L"C:\\a\\b.exe", L"C:\\a"},
        {L"C:\\a/b.exe", L"C:"},
        {L"C:/a/b.exe", L"C:/a"},
        {L"C:/a\\b", L"C:/a"},
        {L"C:\\a\\", L"C:\\a"},
        {L"a/", L"a"},
        {L"\\a", L""},
        {L"/", L""},
    };
    for (const auto& row : rows) {
        std::wstring directory = L"old";
        EXPECT_TRUE(directoryOfPath(row.path, directory)) << row.path;
        EXPECT_EQ(directory, row.directory);
    }
}

TEST(DirectoryOfPathTest, PathWithoutASeparatorLeavesTheOutput) {
    for (const wchar_t* path : {L"", L"a.exe", L"C:a.exe"}) {
        std::wstring directory = L"old";
        EXPECT_FALSE(directoryOfPath(path, directory)) << path;
        EXPECT_EQ(directory, L"old");
    }
}

TEST(HostProgramDirectoryTest, IsTheDirectoryOfTheRunningProgram) {
    EXPECT_EQ(hostProgramDirectory(), testProgramDirectory());
}

/// Answers as if the host program were `path`.
DWORD giveProgram(std::wstring_view path, wchar_t* buffer) {
    buffer[path.copy(buffer, path.size())] = L'\0';
    SetLastError(ERROR_INVALID_DATA);
    return static_cast<DWORD>(path.size());
}

TEST(HostProgramDirectoryTest, AsksTheSystemOnceItHasAnAnswer) {
    inFreshProcess([] {
        const FakeModuleFileName name([](HMODULE module, wchar_t* buffer, DWORD size) {
            EXPECT_EQ(module, nullptr);
            EXPECT_EQ(size, 260u);
            return giveProgram(L"C:\\Host\\bin\\setup.exe", buffer);
        });

        EXPECT_EQ(hostProgramDirectory(), L"C:\\Host\\bin");
        EXPECT_EQ(hostProgramDirectory(), L"C:\\Host\\bin");

        EXPECT_EQ(name.count, 1);
    });
}

TEST(HostProgramDirectoryTest, IsEmptyUntilTheSystemAnswers) {
    inFreshProcess([] {
        bool known = false;
        const FakeModuleFileName name([&](auto, wchar_t* buffer, auto) {
            const DWORD length = giveProgram(L"C:\\Host\\setup.exe", buffer);
            return known ? length : 0;
        });

        EXPECT_EQ(hostProgramDirectory(), L"");
        known = true;
        EXPECT_EQ(hostProgramDirectory(), L"C:\\Host");
    });
}

}  // namespace
