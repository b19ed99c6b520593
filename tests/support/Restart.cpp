#include "support/Restart.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "support/Requirements.h"

namespace {

constexpr wchar_t sessionManager[] = L"System\\CurrentControlSet\\Control\\Session Manager";
constexpr wchar_t replacements[] = L"PendingFileRenameOperations";

}  // namespace

void restart() {
    ASSERT_TRUE(runsUnderWine());
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

std::optional<std::wstring> pendingReplacements() {
    DWORD size = 0;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, sessionManager, replacements, RRF_RT_ANY, nullptr, nullptr,
                     &size) != ERROR_SUCCESS)
        return {};
    std::wstring texts(size / sizeof(wchar_t), L'\0');
    RegGetValueW(HKEY_LOCAL_MACHINE, sessionManager, replacements, RRF_RT_ANY, nullptr,
                 texts.data(), &size);
    return texts.substr(0, size / sizeof(wchar_t));
}

TakesBackReplacements::~TakesBackReplacements() {
    if (before)
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, sessionManager, replacements, REG_MULTI_SZ,
                        before->data(), static_cast<DWORD>(before->size() * sizeof(wchar_t)));
    else
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, sessionManager, replacements);
}
