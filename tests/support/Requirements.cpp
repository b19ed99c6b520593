#include "support/Requirements.h"

#include <windows.h>

#include <algorithm>

#include "support/TestFolder.h"

bool runsUnderWine() {
    return GetEnvironmentVariableW(L"TEMZ_TESTS_WITHOUT_WINE", nullptr, 0) == 0 &&
           GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

bool isActiveCodePage(std::initializer_list<unsigned> codePages) {
    return std::find(codePages.begin(), codePages.end(), GetACP()) != codePages.end();
}

bool heedsManifestCodePage() {
    constexpr DWORD build1903 = 18362;
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    const auto getVersion = reinterpret_cast<LONG(WINAPI*)(OSVERSIONINFOW*)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
    const bool isLater = getVersion(&version) == 0 && version.dwBuildNumber >= build1903;
    return isLater || runsUnderWine();
}

bool overwritesReadOnlyFiles() {
    const TestFolder folder;
    const std::wstring source = folder.write(L"source", "new");
    const std::wstring target = folder.write(L"target", "old");
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY);
    return CopyFileW(source.c_str(), target.c_str(), FALSE);
}
