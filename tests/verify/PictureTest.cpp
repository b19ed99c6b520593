#include "author/verify/Picture.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>

#include "author/verify/Difference.h"
#include "support/Requirements.h"
#include "support/Restart.h"
#include "support/TestFolder.h"
#include "support/TestKey.h"
#include "support/TestService.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// What has happened on the machine, since the picture was taken.
std::vector<std::wstring> since(const Picture& before) {
    std::vector<std::wstring> all;
    const Picture now = takePicture();
    for (const Difference& one : compare(before, before, now))
        all.push_back(std::wstring(wordOf(one.aftermath)) + L" " + wordOf(one.kind) + L" " +
                      one.name);
    return all;
}

class PictureTest : public testing::Test {
protected:
    void SetUp() override { REQUIRES_WINE("nobody else may work on the machine meanwhile"); }

    /// Writes other bytes into a file, as many, and sets its time back.
    static void rewrite(const std::wstring& path, char byte) {
        const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE | FILE_WRITE_ATTRIBUTES, 0,
                                        nullptr, OPEN_EXISTING, 0, nullptr);
        FILETIME time;
        GetFileTime(file, nullptr, nullptr, &time);
        DWORD written = 0;
        WriteFile(file, &byte, 1, &written, nullptr);
        SetFileTime(file, nullptr, nullptr, &time);
        CloseHandle(file);
    }

    const TestFolder folder;
};

TEST_F(PictureTest, IsTheSameWhenNothingHappens) {
    const Picture before = takePicture();
    EXPECT_THAT(since(before), IsEmpty());
    EXPECT_TRUE(
        std::is_sorted(before.begin(), before.end(),
                       [](const auto& one, const auto& other) { return one.isBefore(other); }));
}

TEST_F(PictureTest, ShowsFilesDirectoriesAndShortcuts) {
    const std::wstring changed = folder.write(L"changed.txt", "old");
    const std::wstring hidden = folder.write(L"hidden.txt", "");
    const std::wstring lost = folder.write(L"lost.txt", "");
    const std::wstring rewritten = folder.write(L"rewritten.txt", "a");
    const Picture before = takePicture();

    folder.write(L"changed.txt", "new text");
    SetFileAttributesW(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN);
    DeleteFileW(lost.c_str());
    rewrite(rewritten, 'b');
    folder.write(L"in\\left.txt", "");
    folder.write(L"in\\left.lnk", "");

    EXPECT_THAT(since(before), ElementsAre(L"left file " + folder.path(L"in\\left.txt"),
                                           L"left directory " + folder.path(L"in"),
                                           L"left link " + folder.path(L"in\\left.lnk"),
                                           L"changed file " + changed, L"changed file " + hidden,
                                           L"changed file " + rewritten, L"lost file " + lost));
}

TEST_F(PictureTest, ShowsTheRegistry) {
    const TestKey key;
    writeValue(key.path(), L"changed", {REG_SZ, "a"});
    writeValue(key.path(), L"retyped", {REG_SZ, "a"});
    writeValue(key.path(), L"same", {REG_SZ, "a"});
    const Picture before = takePicture();

    writeValue(key.path(), L"changed", {REG_SZ, "b"});
    writeValue(key.path(), L"retyped", {REG_BINARY, "a"});
    writeValue(key.make(L"in"), L"", {REG_SZ, "a"});

    const std::wstring path = L"HKEY_CURRENT_USER\\" + key.path();
    EXPECT_THAT(since(before), ElementsAre(L"left key " + path + L"\\in",
                                           L"left value " + path + L"\\in: (default)",
                                           L"changed value " + path + L": changed",
                                           L"changed value " + path + L": retyped"));
}

TEST_F(PictureTest, ShowsServicesAndWhetherTheyRun) {
    const TestService service;
    const Picture before = takePicture();

    service.start();

    EXPECT_THAT(since(before),
                testing::Contains(std::wstring(L"changed service ") + service.name()));
    const auto found = std::find_if(before.begin(), before.end(), [&](const Thing& thing) {
        return thing.kind == ThingKind::service && thing.name == service.name();
    });
    EXPECT_NE(found, before.end());
}

TEST_F(PictureTest, ShowsWhatWaitsForARestart) {
    const TakesBackReplacements taken;
    const std::wstring file = folder.write(L"a.txt", "");
    const Picture before = takePicture();

    MoveFileExW(file.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    MoveFileExW(file.c_str(), folder.path(L"b.txt").c_str(), MOVEFILE_DELAY_UNTIL_REBOOT);

    EXPECT_THAT(since(before), ElementsAre(L"left restart \\??\\" + file + L" becomes \\??\\" +
                                               folder.path(L"b.txt"),
                                           L"left restart \\??\\" + file + L" goes"));
}

TEST_F(PictureTest, LeavesOutWhatItIsTold) {
    const std::wstring file = folder.write(L"a.txt", "");
    for (const Thing& thing : takePicture({file}))
        EXPECT_NE(thing.name, file);
}

TEST(SystemsOwn, CountsWithAllBelow) {
    for (const wchar_t* name :
         {L"C:\\pagefile.sys", L"D:\\System Volume Information\\a", L"C:\\InstallLog\\temz.log",
          L"HKEY_LOCAL_MACHINE\\Hardware", L"HKEY_LOCAL_MACHINE\\HARDWARE\\a: b",
          L"HKEY_LOCAL_MACHINE\\System\\ControlSet001\\Services\\a",
          L"HKEY_CURRENT_USER\\Software\\Wine\\Fonts: Codepages"})
        EXPECT_NE(findSystemsOwn(name), nullptr) << name;
    for (const wchar_t* name :
         {L"C:\\pagefile.sys2", L"C:\\a\\pagefile.sys", L"C:\\InstallLog",
          L"HKEY_LOCAL_MACHINE\\HardwareX", L"HKEY_LOCAL_MACHINE\\Software\\Hardware",
          L"HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\a"})
        EXPECT_EQ(findSystemsOwn(name), nullptr) << name;
}

TEST(SystemsOwn, HasAReasonForEachRow) {
    EXPECT_STREQ(findSystemsOwn(L"C:\\swapfile.sys")->reason, L"memory");
}

}  // namespace
