#include "support/SmallDisk.h"

#include <windows.h>

#include "support/Requirements.h"
#include "support/TestFolder.h"

namespace {

constexpr DWORD patience = 10'000;  // milliseconds

/// What Linux calls a path; there is none on Windows.
std::string unixPath(const std::wstring& path) {
    using GetName = char*(CDECL*)(const wchar_t*);
    const auto getName = reinterpret_cast<GetName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    char* const name = getName(path.c_str());
    const std::string result = name ? name : "";
    HeapFree(GetProcessHeap(), 0, name);
    return result;
}

/// Has the shell of Linux carry out a command, and gives whether it has succeeded. A program of
/// Linux can't be waited for: it writes into a file how it ended.
bool succeeds(const std::string& command) {
    const TestFolder folder;
    const std::wstring answer = folder.path(L"answer");
    const std::string part = unixPath(folder.path()) + "/part";
    const std::string text = command + " >/dev/null 2>&1; echo $? >'" + part + "'; mv '" + part +
                             "' '" + unixPath(folder.path()) + "/answer'";
    std::wstring commandLine = L"sh -c \"" + std::wstring(text.begin(), text.end()) + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(L"\\\\?\\unix\\bin\\sh", commandLine.data(), nullptr, nullptr, FALSE, 0,
                        nullptr, nullptr, &startup, &process))
        return false;
    const ULONGLONG start = GetTickCount64();
    while (!exists(answer) && GetTickCount64() - start < patience)
        Sleep(5);
    return readFile(answer) == "0\n";
}

}  // namespace

SmallDisk::SmallDisk(const std::wstring& directory, uint64_t bytes) : directory(directory) {
    EXPECT_TRUE(succeeds("mount -t tmpfs -o size=" + std::to_string(bytes) + " tmpfs '" +
                         unixPath(directory) + "'"));
}

SmallDisk::~SmallDisk() {
    EXPECT_TRUE(succeeds("umount '" + unixPath(directory) + "'"));
}

uint64_t SmallDisk::room() const {
    ULARGE_INTEGER bytes{};
    EXPECT_TRUE(GetDiskFreeSpaceExW(directory.c_str(), &bytes, nullptr, nullptr));
    return bytes.QuadPart;
}

void SmallDisk::fill(uint64_t leave) const {
    writeFile(filler(), std::string(room() - leave, 'x'));
}

void SmallDisk::makeRoom() const {
    EXPECT_TRUE(DeleteFileW(filler().c_str()));
}

bool mountsSmallDisks() {
    if (!runsUnderWine())
        return false;
    const TestFolder folder;
    const std::string path = "'" + unixPath(folder.path()) + "'";
    return succeeds("mount -t tmpfs -o size=4k tmpfs " + path + " && umount " + path);
}
