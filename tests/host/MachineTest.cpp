#include "host/Machine.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <regex>

#include "support/TestFolder.h"

namespace {

bool matches(const std::wstring& text, const wchar_t* pattern) {
    return std::regex_match(text, std::wregex(pattern));
}

TEST(MachineTest, TellsTheVersionOfWindows) {
    EXPECT_TRUE(matches(windowsVersion(), LR"(\d+\.\d+\.\d+)")) << windowsVersion().c_str();
}

TEST(MachineTest, TellsWhoRunsTheProgram) {
    wchar_t name[257];
    DWORD size = 257;
    ASSERT_TRUE(GetUserNameW(name, &size));
    EXPECT_TRUE(userName().ends_with(L"\\" + std::wstring(name)));
    EXPECT_TRUE(matches(userId(), LR"(S-1-\d+(-\d+)+)"));
}

TEST(MachineTest, TellsNoOwnerOfWhatIsNotThere) {
    EXPECT_EQ(ownerOf(TestFolder().path(L"none")), L"");
}

TEST(MachineTest, TellsTheTimeSoThatItsTextsAreInItsOrder) {
    const std::wstring before = timeStamp();
    EXPECT_TRUE(matches(before, LR"(\d{4}-[01]\d-[0-3]\d [0-2]\d:[0-5]\d:[0-6]\d)"));
}

TEST(MachineTest, HashesFilesOfAnySize) {
    const TestFolder folder;
    EXPECT_EQ(sha256OfFile(folder.write(L"empty", "")),
              L"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256OfFile(folder.write(L"abc", "abc")),
              L"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256OfFile(folder.write(L"million", std::string(1'000'000, 'a'))),
              L"cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    EXPECT_EQ(sha256OfFile(folder.path(L"none")), L"");
    EXPECT_EQ(sha256OfFile(folder.path()), L"");
}

TEST(MachineTest, GivesTheWholePath) {
    wchar_t directory[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, directory);
    EXPECT_EQ(wholePath(L"C:\\a\\..\\b.xml"), L"C:\\b.xml");
    EXPECT_EQ(wholePath(L"b.xml"), directory + std::wstring(L"\\b.xml"));
    EXPECT_EQ(wholePath(L""), L"");
}

}  // namespace
