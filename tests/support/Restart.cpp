#include "support/Restart.h"

#include <gtest/gtest.h>
#include <windows.h>

void restart() {
    wchar_t command[] = L"wineboot.exe -r";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessW(L"C:\\windows\\system32\\wineboot.exe", command, nullptr, nullptr,
                               FALSE, 0, nullptr, nullptr, &startup, &process));
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 60'000), WAIT_OBJECT_0);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}
