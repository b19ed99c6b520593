#include "plan/ShadowFiles.h"

#include "plan/PlanTest.h"
#include "support/LockedFile.h"
#include "support/Requirements.h"
#include "support/Sleeper.h"
#include "support/VersionedFile.h"
#include "system/FileOperations.h"
#include "system/FileVersion.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

namespace {

class ShadowFilesTest : public PlanTest {
protected:
    DWORD copy(const std::wstring& source, const std::wstring& target) const {
        return errorOf(fileCalls.CopyFileW(source.c_str(), target.c_str(), FALSE));
    }
    DWORD remove(const std::wstring& path) const {
        return errorOf(fileCalls.DeleteFileW(path.c_str()));
    }
    DWORD makeDirectory(const std::wstring& path) const {
        return errorOf(fileCalls.CreateDirectoryW(path.c_str(), nullptr));
    }
    DWORD removeDirectory(const std::wstring& path) const {
        return errorOf(fileCalls.RemoveDirectoryW(path.c_str()));
    }
    DWORD attributes(const std::wstring& path) const {
        return fileCalls.GetFileAttributesW(path.c_str());
    }

    /// The names that a pattern finds; the error in angle brackets when it finds none.
    std::vector<std::wstring> find(const std::wstring& pattern) const {
        WIN32_FIND_DATAW data;
        const HANDLE search = fileCalls.FindFirstFileW(pattern.c_str(), &data);
        if (search == INVALID_HANDLE_VALUE)
            return {L"<" + std::to_wstring(GetLastError()) + L">"};
        std::vector<std::wstring> names;
        do
            names.emplace_back(data.cFileName);
        while (fileCalls.FindNextFileW(search, &data));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
        EXPECT_TRUE(fileCalls.FindClose(search));
        return names;
    }
};

// Copies.

TEST_F(ShadowFilesTest, CopyIsThereThoughNothingIsWritten) {
    const std::wstring source = folder.write(L"a.txt", "12345");
    const std::wstring target = folder.path(L"b.txt");

    EXPECT_EQ(copy(source, target), 0u);

    EXPECT_TRUE(fileExists(target.c_str()));
    EXPECT_FALSE(attributes(target) & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_FALSE(exists(target));
    ASSERT_THAT(changes(), ElementsAre(Pair(ChangeKind::fileAdded, target)));
    EXPECT_EQ(lastChange().source, source);
    EXPECT_EQ(lastChange().bytes, 5u);
    EXPECT_EQ(lastChange().before, L"");
}

TEST_F(ShadowFilesTest, CopyTellsWhatItReplaces) {
    const std::wstring source = folder.path(L"new.dll");
    const std::wstring target = folder.path(L"old.dll");
    placeVersionedFile(source, L"1.10.0.0");
    placeVersionedFile(target, L"1.2.0.0");

    EXPECT_EQ(copy(source, target), 0u);

    ASSERT_THAT(changes(), ElementsAre(Pair(ChangeKind::fileReplaced, target)));
    EXPECT_THAT(lastChange().before, HasSubstr(L"1.2.0.0, "));
    EXPECT_THAT(lastChange().after, HasSubstr(L"1.10.0.0, "));
    EXPECT_FALSE(lastChange().sameContent);
}

TEST_F(ShadowFilesTest, CopyTellsWhenTheContentIsTheSame) {
    const std::wstring source = folder.write(L"a.txt", "same");
    EXPECT_EQ(copy(source, folder.write(L"b.txt", "same")), 0u);
    EXPECT_TRUE(lastChange().sameContent);
    EXPECT_EQ(copy(source, folder.write(L"c.txt", "diff")), 0u);
    EXPECT_FALSE(lastChange().sameContent);
}

TEST_F(ShadowFilesTest, CopyOfACopyHasTheVersionOfTheFirst) {
    const std::wstring source = folder.path(L"a.dll");
    placeVersionedFile(source, L"1.10.0.0");
    EXPECT_EQ(copy(source, folder.path(L"b.dll")), 0u);
    EXPECT_EQ(copy(folder.path(L"b.dll"), folder.path(L"c.dll")), 0u);

    uint64_t version = 0;
    EXPECT_TRUE(getFileVersion(folder.path(L"c.dll").c_str(), version));
    EXPECT_EQ(version, parseVersionText(L"1.10"));
}

TEST_F(ShadowFilesTest, PlannedDirectoryHasNoVersionAsARealOneHasNone) {
    const std::wstring real = folder.makeDirectory(L"real");
    const std::wstring planned = folder.path(L"planned");
    EXPECT_EQ(makeDirectory(planned), 0u);

    for (const std::wstring& path : {real, planned})
        EXPECT_EQ(errorOf(versionCalls.GetFileVersionInfoSizeW(path.c_str(), nullptr) != 0),
                  DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(ShadowFilesTest, VersionOfARemovedFileIsGone) {
    const std::wstring file = folder.path(L"a.dll");
    placeVersionedFile(file, L"1.10.0.0");
    EXPECT_EQ(remove(file), 0u);

    DWORD unused = 0;
    EXPECT_EQ(versionCalls.GetFileVersionInfoSizeW(file.c_str(), &unused), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(ShadowFilesTest, CopyFailsAsTheSystemsDoes) {
    const std::wstring source = folder.write(L"a.txt", "x");
    const std::wstring held = folder.write(L"held.txt", "x");
    const LockedFile lock(held);
    struct Case {
        std::wstring source;
        std::wstring target;
    };
    const Case cases[] = {
        {folder.path(L"none.txt"), folder.path(L"b.txt")},
        {folder.path(L"none\\none.txt"), folder.path(L"b.txt")},
        {source, folder.path(L"none\\b.txt")},
        {source, folder.makeDirectory(L"directory")},
        {folder.path(), folder.path(L"b.txt")},
        {source, folder.path(L"a|b.txt")},
        {source, held},
        {held, folder.path(L"b.txt")},
        {source, source},
        {source, folder.path(L"A.TXT")},
    };
    for (const Case& row : cases) {
        const DWORD real = errorOf(CopyFileW(row.source.c_str(), row.target.c_str(), FALSE));
        EXPECT_NE(real, 0u);
        EXPECT_EQ(copy(row.source, row.target), real) << testing::PrintToString(row.target);
    }
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowFilesTest, CopyOverAReadOnlyFileFailsWhereTheSystemsDoes) {
    const std::wstring source = folder.write(L"a.txt", "x");
    const std::wstring target = folder.write(L"b.txt", "y");
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY);

    EXPECT_EQ(copy(source, target),
              overwritesReadOnlyFiles() ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(ShadowFilesTest, CopyOverAHiddenFileFails) {
    const std::wstring target = folder.write(L"b.txt", "y");
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_HIDDEN);

    EXPECT_EQ(copy(folder.write(L"a.txt", "x"), target), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(ShadowFilesTest, CopyThatDoesNotFitOnTheDriveFails) {
    REQUIRES_HOLES_IN_FILES();
    const std::wstring source = folder.path(L"huge");
    ULARGE_INTEGER available{};
    GetDiskFreeSpaceExW(folder.path().c_str(), &available, nullptr, nullptr);
    makeHole(source, available.QuadPart / 3 * 2);

    EXPECT_EQ(copy(source, folder.path(L"one")), 0u);
    EXPECT_EQ(copy(source, folder.path(L"two")), DWORD{ERROR_DISK_FULL});
    EXPECT_EQ(remove(folder.path(L"one")), 0u);
    EXPECT_EQ(copy(source, folder.path(L"two")), 0u);
}

TEST_F(ShadowFilesTest, PlannedTargetFailsAsARealOneDoes) {
    const std::wstring source = folder.write(L"a.txt", "x");
    const std::wstring directory = folder.path(L"directory");
    EXPECT_EQ(makeDirectory(directory), 0u);
    EXPECT_EQ(copy(source, directory), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(copy(directory, folder.path(L"b.txt")), DWORD{ERROR_ACCESS_DENIED});

    folder.write(L"tree\\in\\b.txt", "x");
    EXPECT_TRUE(removeDirectoryTree(folder.path(L"tree").c_str()));
    EXPECT_EQ(copy(source, folder.path(L"tree\\b.txt")), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(copy(folder.path(L"tree\\in\\b.txt"), folder.path(L"b.txt")),
              DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(ShadowFilesTest, CopyThatIsToKeepWhatIsThereFailsOverIt) {
    const std::wstring source = folder.write(L"a.txt", "x");
    const std::wstring target = folder.path(L"b.txt");

    EXPECT_TRUE(fileCalls.CopyFileW(source.c_str(), target.c_str(), TRUE));
    EXPECT_EQ(errorOf(fileCalls.CopyFileW(source.c_str(), target.c_str(), TRUE)),
              DWORD{ERROR_FILE_EXISTS});
}

TEST_F(ShadowFilesTest, CopyOverAPlannedReadOnlyFileFailsWhereTheSystemsDoes) {
    const std::wstring source = folder.write(L"a.txt", "x");
    SetFileAttributesW(source.c_str(), FILE_ATTRIBUTE_READONLY);
    const std::wstring copied = folder.path(L"b.txt");
    const std::wstring link = folder.path(L"b.lnk");
    EXPECT_EQ(copy(source, copied), 0u);
    EXPECT_EQ(linkCalls.Save(nullptr, link.c_str(), TRUE), S_OK);
    EXPECT_TRUE(fileCalls.SetFileAttributesW(link.c_str(), FILE_ATTRIBUTE_READONLY));

    EXPECT_EQ(copy(source, copied),
              overwritesReadOnlyFiles() ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(copy(source, link), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(ShadowFilesTest, CopyOverAPlannedLinkHasOtherContent) {
    const std::wstring link = folder.path(L"b.lnk");
    EXPECT_EQ(linkCalls.Save(nullptr, link.c_str(), TRUE), S_OK);

    EXPECT_EQ(copy(folder.write(L"empty", ""), link), 0u);
    EXPECT_EQ(lastChange().kind, ChangeKind::fileReplaced);
    EXPECT_FALSE(lastChange().sameContent);
}

// Deletions.

TEST_F(ShadowFilesTest, DeletedFileIsGoneThoughItStays) {
    const std::wstring file = folder.write(L"a.txt", "123");

    EXPECT_EQ(remove(file), 0u);

    EXPECT_FALSE(fileExists(file.c_str()));
    EXPECT_EQ(attributes(file), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(remove(file), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_TRUE(exists(file));
    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::fileRemoved, file)));
    EXPECT_EQ(lastChange().bytesBefore, 3u);
}

TEST_F(ShadowFilesTest, DeletionFailsAsTheSystemsDoes) {
    const std::wstring readOnly = folder.write(L"read-only.txt", "x");
    SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
    const std::wstring held = folder.write(L"held.txt", "x");
    const LockedFile lock(held);
    const Sleeper sleeper(folder.path(L"running.exe"));
    for (const std::wstring& path :
         {folder.path(L"none"), folder.path(L"none\\none"), folder.makeDirectory(L"directory"),
          readOnly, held, folder.path(L"running.exe")}) {
        const DWORD real = errorOf(DeleteFileW(path.c_str()));
        EXPECT_NE(real, 0u);
        EXPECT_EQ(remove(path), real) << testing::PrintToString(path);
    }
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowFilesTest, ReadOnlyFileCanBeDeletedOnceItIsNoMore) {
    REQUIRES_OPENED_ATTRIBUTES();
    const std::wstring file = folder.write(L"a.txt", "x");
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);

    EXPECT_EQ(deleteFile(file.c_str()), 0);

    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::attributesChanged, file),
                                       Pair(ChangeKind::fileRemoved, file)));
    EXPECT_TRUE(GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_READONLY);
}

TEST_F(ShadowFilesTest, FileThatIsReadMeanwhileCanBeDeleted) {
    const std::wstring file = folder.write(L"a.txt", "x");
    const HANDLE reader =
        CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, 0, nullptr);

    EXPECT_EQ(remove(file), 0u);

    CloseHandle(reader);
}

TEST_F(ShadowFilesTest, PlannedDirectoryIsNotDeletedAsAFile) {
    EXPECT_EQ(makeDirectory(folder.path(L"directory")), 0u);
    EXPECT_EQ(remove(folder.path(L"directory")), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(ShadowFilesTest, AttributesOfAMissingFileCannotBeSet) {
    const std::wstring removed = folder.write(L"removed", "x");
    EXPECT_EQ(remove(removed), 0u);
    for (const std::wstring& path : {folder.path(L"none"), removed})
        EXPECT_EQ(errorOf(fileCalls.SetFileAttributesW(path.c_str(), 0)),
                  DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(ShadowFilesTest, AttributesOfACopyAreThoseThatAreSet) {
    const std::wstring target = folder.path(L"b.txt");
    EXPECT_EQ(copy(folder.write(L"a.txt", "x"), target), 0u);

    EXPECT_TRUE(fileCalls.SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY));

    EXPECT_EQ(attributes(target), DWORD{FILE_ATTRIBUTE_READONLY});
    EXPECT_EQ(remove(target), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(ShadowFilesTest, DirectoryStaysOneWhateverItsAttributesAre) {
    const std::wstring real = folder.makeDirectory(L"real");
    folder.write(L"real\\a.txt", "x");
    const std::wstring planned = folder.path(L"planned");
    EXPECT_EQ(makeDirectory(planned), 0u);
    for (const std::wstring& path : {real, planned}) {
        EXPECT_TRUE(fileCalls.SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
        EXPECT_EQ(attributes(path), DWORD{FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY});
    }

    EXPECT_EQ(lastChange().after, L"");
    EXPECT_EQ(removeDirectory(planned), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_TRUE(fileExists(folder.path(L"real\\a.txt").c_str()));
    EXPECT_EQ(attributes(folder.path(L"real\\none")), INVALID_FILE_ATTRIBUTES);
}

// Replacements at a restart.

TEST_F(ShadowFilesTest, FileInUseIsReplacedAtTheRestart) {
    const std::wstring target = folder.write(L"b.txt", "old");
    const LockedFile lock(target);

    EXPECT_EQ(copyFileWithDelay(folder.write(L"a.txt", "new").c_str(), target.c_str(), true),
              COPY_DELAYED);

    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::fileAdded, target + stagingSuffix),
                                       Pair(ChangeKind::fileAtRestart, target)));
    EXPECT_EQ(lastChange().source, folder.path(L"a.txt"));
}

// Directories.

TEST_F(ShadowFilesTest, MadeDirectoryTakesFilesAndDirectories) {
    const std::wstring deep = folder.path(L"one\\two\\three");

    EXPECT_TRUE(createDirectories(deep.c_str()));
    EXPECT_EQ(copy(folder.write(L"a.txt", "x"), deep + L"\\a.txt"), 0u);

    EXPECT_TRUE(attributes(deep) & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_THAT(find(deep + L"\\*"), ElementsAre(L".", L"..", L"a.txt"));
    EXPECT_EQ(makeDirectory(deep), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_EQ(makeDirectory(deep + L"\\a.txt\\x"), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(makeDirectory(deep + L"\\a|b"), DWORD{ERROR_INVALID_NAME});
    EXPECT_FALSE(exists(folder.path(L"one")));
}

TEST_F(ShadowFilesTest, DirectoryFailsAsTheSystemsDoes) {
    for (const std::wstring& path :
         {folder.path(), folder.write(L"file", "x"), folder.path(L"none\\x"), folder.path(L"a|b"),
          folder.path(L"file\\x")}) {
        const DWORD real = errorOf(CreateDirectoryW(path.c_str(), nullptr));
        EXPECT_NE(real, 0u);
        EXPECT_EQ(makeDirectory(path), real) << testing::PrintToString(path);
    }
    for (const std::wstring& path :
         {folder.path(), folder.path(L"file"), folder.path(L"none"), folder.path(L"none\\x")}) {
        const DWORD real = errorOf(RemoveDirectoryW(path.c_str()));
        EXPECT_NE(real, 0u);
        EXPECT_EQ(removeDirectory(path), real) << testing::PrintToString(path);
    }
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowFilesTest, TreeIsRemovedAndLeavesNothingToFind) {
    folder.write(L"tree\\a.txt", "x");
    folder.write(L"tree\\in\\b.txt", "x");
    const std::wstring tree = folder.path(L"tree");
    EXPECT_EQ(copy(folder.path(L"tree\\a.txt"), folder.path(L"tree\\in\\new.txt")), 0u);

    EXPECT_TRUE(removeDirectoryTree(tree.c_str()));

    EXPECT_EQ(attributes(tree), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(attributes(tree + L"\\in\\b.txt"), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_THAT(find(tree + L"\\*"), ElementsAre(L"<3>"));
    EXPECT_TRUE(exists(tree + L"\\in\\b.txt"));
}

TEST_F(ShadowFilesTest, DirectoryMadeAnewIsEmpty) {
    folder.write(L"tree\\a.txt", "x");
    const std::wstring tree = folder.path(L"tree");
    EXPECT_TRUE(removeDirectoryTree(tree.c_str()));
    EXPECT_EQ(makeDirectory(tree), 0u);

    EXPECT_THAT(find(tree + L"\\*"), ElementsAre(L".", L".."));
    EXPECT_EQ(attributes(tree + L"\\a.txt"), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(ShadowFilesTest, DirectoryThatHoldsAPlannedFileIsNotRemoved) {
    const std::wstring directory = folder.makeDirectory(L"empty");
    EXPECT_EQ(copy(folder.write(L"a.txt", "x"), directory + L"\\a.txt"), 0u);

    EXPECT_EQ(removeDirectory(directory), DWORD{ERROR_DIR_NOT_EMPTY});
}

// Searches.

TEST_F(ShadowFilesTest, SearchFindsWhatIsAndWhatIsPlannedInOrder) {
    const std::wstring source = folder.write(L"in\\b.txt", "x");
    folder.write(L"in\\d.txt", "x");
    folder.write(L"in\\e.log", "x");
    EXPECT_EQ(copy(source, folder.path(L"in\\C.txt")), 0u);
    EXPECT_EQ(copy(source, folder.path(L"in\\a.txt")), 0u);
    EXPECT_EQ(remove(folder.path(L"in\\d.txt")), 0u);

    EXPECT_THAT(find(folder.path(L"in\\*")),
                ElementsAre(L".", L"..", L"a.txt", L"b.txt", L"C.txt", L"e.log"));
    EXPECT_THAT(find(folder.path(L"in\\?.TXT")), ElementsAre(L"a.txt", L"b.txt", L"C.txt"));
    EXPECT_THAT(find(folder.path(L"in\\*.none")), ElementsAre(L"<2>"));
    EXPECT_THAT(find(folder.path(L"in\\A.TXT")), ElementsAre(L"a.txt"));
    EXPECT_THAT(find(folder.path(L"in\\a.txt\\")), ElementsAre(L"<2>"));
    EXPECT_THAT(find(folder.path(L"in\\a.txt") + L"/"), ElementsAre(L"<2>"));
    EXPECT_THAT(find(folder.path(L"none\\*")), ElementsAre(L"<3>"));
    EXPECT_THAT(find(folder.path(L"in\\*.*")), find(folder.path(L"in\\*")));
    EXPECT_THAT(find(folder.path(L"in\\?.txx")), ElementsAre(L"<2>"));
    EXPECT_THAT(find(folder.path(L"in\\a.txt\\*")),
                ElementsAre(L"<" + std::to_wstring(ERROR_DIRECTORY) + L">"));
}

TEST_F(ShadowFilesTest, SearchThatIsNotOneOfTheRunIsTheSystems) {
    EXPECT_EQ(errorOf(fileCalls.FindClose(INVALID_HANDLE_VALUE)), DWORD{ERROR_INVALID_HANDLE});
}

TEST_F(ShadowFilesTest, OnePathIsKnownInAllItsSpellings) {
    EXPECT_EQ(remove(folder.write(L"in\\a.txt", "x")), 0u);

    std::wstring other = folder.path(L"in\\..\\IN\\A.TXT");
    std::replace(other.begin(), other.end(), L'\\', L'/');
    EXPECT_EQ(attributes(other), INVALID_FILE_ATTRIBUTES);
}

TEST_F(ShadowFilesTest, SucceedingCallsLeaveTheLastErrorAlone) {
    const std::wstring source = folder.write(L"a.txt", "x");
    SetLastError(ERROR_INVALID_DATA);

    EXPECT_TRUE(fileCalls.CopyFileW(source.c_str(), folder.path(L"b.txt").c_str(), FALSE));
    EXPECT_TRUE(fileExists(folder.path(L"b.txt").c_str()));
    EXPECT_TRUE(fileCalls.DeleteFileW(folder.path(L"b.txt").c_str()));

    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_DATA});
}

}  // namespace
