#include "host/Machine.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <regex>

#include "host/MachineCalls.h"
#include "support/FakeCall.h"
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

TEST(MachineTest, SaysNothingOfAUserWhomTheSystemDoesNotTell) {
    {
        const FakeCall<machineCalls, &MachineCalls::GetTokenInformation> noToken(
            [](auto...) { return FALSE; });
        EXPECT_EQ(userName(), L"");
        EXPECT_EQ(userId(), L"");
        EXPECT_FALSE(isElevated());
    }
    {
        const FakeCall<machineCalls, &MachineCalls::LookupAccountSidW> noName(
            [](auto...) { return FALSE; });
        EXPECT_EQ(userName(), L"");
        EXPECT_NE(userId(), L"");
    }
    const FakeCall<machineCalls, &MachineCalls::ConvertSidToStringSidW> noText(
        [](auto...) { return FALSE; });
    EXPECT_EQ(userId(), L"");
}

TEST(MachineTest, IsElevatedWhereTheSystemSaysSo) {
    for (const DWORD elevated : {0, 1}) {
        const FakeCall<machineCalls, &MachineCalls::GetTokenInformation> token(
            [elevated](HANDLE, TOKEN_INFORMATION_CLASS kind, void* answer, DWORD, DWORD*) {
                EXPECT_EQ(kind, TokenElevation);
                static_cast<TOKEN_ELEVATION*>(answer)->TokenIsElevated = elevated;
                return TRUE;
            });
        EXPECT_EQ(isElevated(), elevated == 1);
    }
}

/// The hash of a file where a call of the system fails.
template <auto member>
std::wstring hashWithout(const std::wstring& file) {
    const FakeCall<machineCalls, member> failing([](auto...) { return FALSE; });
    return sha256OfFile(file);
}

TEST(MachineTest, HashesNoFileOfWhichACallFails) {
    const TestFolder folder;
    const std::wstring file = folder.write(L"abc", "abc");
    EXPECT_EQ(hashWithout<&MachineCalls::CryptAcquireContextW>(file), L"");
    EXPECT_EQ(hashWithout<&MachineCalls::CryptCreateHash>(file), L"");
    EXPECT_EQ(hashWithout<&MachineCalls::ReadFile>(file), L"");
    EXPECT_EQ(hashWithout<&MachineCalls::CryptHashData>(file), L"");
    EXPECT_EQ(hashWithout<&MachineCalls::CryptGetHashParam>(file), L"");
}

TEST(MachineTest, GivesTheWholePath) {
    wchar_t directory[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, directory);
    EXPECT_EQ(wholePath(L"C:\\a\\..\\b.xml"), L"C:\\b.xml");
    EXPECT_EQ(wholePath(L"b.xml"), directory + std::wstring(L"\\b.xml"));
    EXPECT_EQ(wholePath(L""), L"");
}

}  // namespace
