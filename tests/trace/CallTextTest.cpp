#include "trace/CallText.h"

#include <gtest/gtest.h>

#include <cwchar>

namespace {

TEST(CallTextTest, RecordsTellWhatTheyAreAbout) {
    WIN32_FIND_DATAW found{};
    wcscpy(found.cFileName, L"a.txt");
    EXPECT_EQ(textOf(found), L"a.txt");

    PROCESSENTRY32W process{};
    wcscpy(process.szExeFile, L"a.exe");
    process.th32ProcessID = 7;
    EXPECT_EQ(textOf(process), L"a.exe 7");

    MODULEENTRY32W module{};
    wcscpy(module.szModule, L"a.exe");
    wcscpy(module.szExePath, L"C:\\b\\a.exe");
    EXPECT_EQ(textOf(module), L"C:\\b\\a.exe");

    QUERY_SERVICE_CONFIGW config{};
    config.dwStartType = SERVICE_DISABLED;
    EXPECT_EQ(textOf(config), L"start 4");
}

}  // namespace
