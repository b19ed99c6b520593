#include "support/Picture.h"

#include <windows.h>

#include <filesystem>

#include "support/LogFile.h"
#include "support/Restart.h"
#include "support/TestFolder.h"

namespace fs = std::filesystem;

namespace {

std::wstring textOf(const FILETIME& time) {
    return std::to_wstring(uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

void addFile(const std::wstring& path, Picture& picture) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data);
    const std::string content = readFile(path);
    picture.insert(path + L": " + std::to_wstring(data.dwFileAttributes) + L" " +
                   std::to_wstring(data.nFileSizeLow) + L" " + textOf(data.ftCreationTime) + L" " +
                   textOf(data.ftLastWriteTime) + L" " +
                   std::to_wstring(std::hash<std::string>()(content)));
}

}  // namespace

void addFolder(const std::wstring& folder, Picture& picture) {
    addFile(folder, picture);
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        addFile(entry.path().wstring(), picture);
}

void addKey(HKEY root, const std::wstring& path, Picture& picture) {
    HKEY key = nullptr;
    if (const LSTATUS error = RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key)) {
        picture.insert(path + L": error " + std::to_wstring(error));
        return;
    }
    picture.insert(path);
    wchar_t name[256];
    DWORD length = std::size(name);
    BYTE data[1024];
    DWORD size = sizeof data;
    DWORD type = 0;
    for (DWORD i = 0;
         RegEnumValueW(key, i, name, &length, nullptr, &type, data, &size) == ERROR_SUCCESS;
         ++i, length = std::size(name), size = sizeof data)
        picture.insert(path + L"\\" + name + L" = " + std::to_wstring(type) + L" " +
                       std::wstring(data, data + size));
    for (DWORD i = 0;
         RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, length = std::size(name))
        addKey(root, path + L"\\" + name, picture);
    RegCloseKey(key);
}

void addService(const std::wstring& name, Picture& picture) {
    const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
    const SC_HANDLE service = OpenServiceW(manager, name.c_str(), SERVICE_QUERY_STATUS);
    SERVICE_STATUS status{};
    QueryServiceStatus(service, &status);
    picture.insert(L"service " + name + L": " + std::to_wstring(status.dwCurrentState));
    CloseServiceHandle(service);
    CloseServiceHandle(manager);
}

void addTraces(Picture& picture) {
    picture.insert(L"at restart: " + pendingReplacements().value_or(L""));
    const std::string log = readFile(logPath);
    picture.insert(L"log: " + std::wstring(log.begin(), log.end()));
}
