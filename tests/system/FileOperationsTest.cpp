#include "system/FileOperations.h"

#include <gmock/gmock.h>

#include <deque>
#include <string>
#include <string_view>

#include "support/ChildProcess.h"
#include "support/FakeFileCalls.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/TestFolder.h"

using testing::IsEmpty;

namespace {

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
    const LogFile log;
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
    EXPECT_THAT(log.lines(), IsEmpty());
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
        {L"a", {ERROR_FILE_EXISTS}, {L"a"}, false},
        {L"\\a", {no}, {L"\\a"}, false},
        {L"/a/b", {no, no}, {L"/a/b", L"/a"}, false},
        {L"\\\\a", {no, no}, {L"\\\\a", L"\\"}, false},
    };
    const LogFile log;
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
    EXPECT_THAT(log.lines(), IsEmpty());
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
        const LogFile log;
        bool known = false;
        const FakeModuleFileName name([&](auto, wchar_t* buffer, auto) {
            const DWORD length = giveProgram(L"C:\\Host\\setup.exe", buffer);
            return known ? length : 0;
        });

        EXPECT_EQ(hostProgramDirectory(), L"");
        EXPECT_THAT(log.lines(), IsEmpty());
        known = true;
        EXPECT_EQ(hostProgramDirectory(), L"C:\\Host");
    });
}

TEST(HostProgramDirectoryTest, IsEmptyWhileThePathIsCutToTheBuffer) {
    inFreshProcess([] {
        size_t length = 260;
        const FakeModuleFileName name([&](auto, wchar_t* buffer, DWORD size) {
            const std::wstring path = L"C:\\Host\\" + std::wstring(length - 8, L'a');
            wmemcpy(buffer, path.c_str(), size);
            return static_cast<DWORD>(path.size());
        });

        EXPECT_EQ(hostProgramDirectory(), L"");
        length = 259;
        EXPECT_EQ(hostProgramDirectory(), L"C:\\Host");
    });
}

}  // namespace
