#include "support/Requirements.h"

#include <windows.h>
#include <winioctl.h>

#include <algorithm>

#include "support/TestFolder.h"

bool runsUnderWindows() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr;
}

bool runsUnderWine() {
    return GetEnvironmentVariableW(L"TEMZ_TESTS_WITHOUT_WINE", nullptr, 0) == 0 &&
           !runsUnderWindows();
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

bool opensReadOnlyFilesForAttributes() {
    const TestFolder folder;
    const std::wstring path = folder.write(L"file", "");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    const HANDLE file =
        CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file);
}

bool keepsHolesInFiles() {
    const TestFolder folder;
    const auto available = [&folder] {
        ULARGE_INTEGER bytes{};
        GetDiskFreeSpaceExW(folder.path().c_str(), &bytes, nullptr, nullptr);
        return bytes.QuadPart;
    };
    const uint64_t before = available();
    makeHole(folder.path(L"hole"), before / 2);
    // Others write on the drive, too, but not as much.
    return available() > before / 4 * 3;
}

void makeHole(const std::wstring& path, uint64_t bytes) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD returned = 0;
    DeviceIoControl(file, FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<int64_t>(bytes);
    SetFilePointerEx(file, end, nullptr, FILE_BEGIN);
    SetEndOfFile(file);
    CloseHandle(file);
}
