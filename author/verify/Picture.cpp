#include "author/verify/Picture.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <tuple>

namespace {

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
struct KeyCloser {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
struct ServiceCloser {
    void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
};
using KeyPtr = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;
using ServicePtr = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, ServiceCloser>;

/// A picture in the making.
class Album {
public:
    explicit Album(const std::vector<std::wstring>& besides) : besides(besides) {}

    /// Takes a thing in, unless it is to be left out. Whether it was taken.
    bool add(ThingKind kind, std::wstring name, const std::array<uint64_t, 4>& state = {}) {
        if (findSystemsOwn(name) ||
            std::find(besides.begin(), besides.end(), name) != besides.end())
            return false;
        picture.push_back({kind, std::move(name), state});
        return true;
    }

    Picture picture;

private:
    const std::vector<std::wstring>& besides;
};

/// Goes through a drive.
class Files {
public:
    explicit Files(Album& album) : album(album), buffer(0x10000) {}

    /// A directory that can't be listed has nothing in it, as far as can be seen.
    void addAllIn(const std::wstring& directory) {
        std::vector<std::wstring> directories;
        list(directory, directories);
        for (const std::wstring& inner : directories)
            addAllIn(inner);
    }

private:
    /// The system fills the buffer with as many entries as fit, again and again.
    void list(const std::wstring& directory, std::vector<std::wstring>& directories) {
        const HANDLE raw = CreateFileW((directory + L"\\").c_str(), FILE_LIST_DIRECTORY,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                       nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
        if (raw == INVALID_HANDLE_VALUE)
            return;
        const std::unique_ptr<void, HandleCloser> handle(raw);
        while (GetFileInformationByHandleEx(raw, FileIdBothDirectoryInfo, buffer.data(),
                                            static_cast<DWORD>(buffer.size())))
            for (const std::byte* place = buffer.data();;) {
                const auto& entry = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(place);
                add(directory, entry, directories);
                if (entry.NextEntryOffset == 0)
                    break;
                place += entry.NextEntryOffset;
            }
    }

    void add(const std::wstring& directory, const FILE_ID_BOTH_DIR_INFO& entry,
             std::vector<std::wstring>& directories) {
        const std::wstring_view name(entry.FileName, entry.FileNameLength / sizeof(wchar_t));
        if (name == L"." || name == L"..")
            return;
        constexpr DWORD lasting = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                  FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_REPARSE_POINT;
        const uint64_t attributes = entry.FileAttributes & lasting;
        const bool isElsewhere = entry.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT;
        std::wstring path = directory + L"\\" + std::wstring(name);
        if ((entry.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) && !isElsewhere) {
            if (album.add(ThingKind::directory, path, {0, 0, 0, attributes}))
                directories.push_back(std::move(path));
            return;
        }
        const ThingKind kind =
            isElsewhere || name.ends_with(L".lnk") ? ThingKind::link : ThingKind::file;
        album.add(kind, std::move(path),
                  {static_cast<uint64_t>(entry.EndOfFile.QuadPart),
                   static_cast<uint64_t>(entry.LastWriteTime.QuadPart),
                   static_cast<uint64_t>(entry.ChangeTime.QuadPart), attributes});
    }

    Album& album;
    std::vector<std::byte> buffer;
};

/// Of the FNV-1a kind: no two values that anybody compares are likely to share it.
uint64_t hashOf(const BYTE* data, size_t size) {
    uint64_t hash = 0xcbf29ce484222325;
    for (size_t i = 0; i < size; ++i)
        hash = (hash ^ data[i]) * 0x100000001b3;
    return hash;
}

/// Goes through a part of the registry.
class Keys {
public:
    explicit Keys(Album& album) : album(album) {}

    void addAllIn(HKEY parent, const wchar_t* name, const std::wstring& path) {
        HKEY raw = nullptr;
        if (RegOpenKeyExW(parent, name, 0, KEY_READ | KEY_WOW64_64KEY, &raw) != ERROR_SUCCESS)
            return;
        const KeyPtr key(raw);
        DWORD keys = 0;
        DWORD values = 0;
        DWORD longestValue = 0;
        DWORD largestData = 0;
        if (RegQueryInfoKeyW(raw, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                             &longestValue, &largestData, nullptr, nullptr) != ERROR_SUCCESS)
            return;
        addValues(raw, path, values, longestValue, largestData);
        addKeys(raw, path, keys);
    }

private:
    void addValues(HKEY key, const std::wstring& path, DWORD count, DWORD longest, DWORD largest) {
        std::wstring name(longest + 1, L'\0');
        std::vector<BYTE> data(largest);
        for (DWORD index = 0; index < count; ++index) {
            DWORD length = longest + 1;
            DWORD size = largest;
            DWORD type = 0;
            if (RegEnumValueW(key, index, name.data(), &length, nullptr, &type, data.data(),
                              &size) == ERROR_SUCCESS)
                album.add(ThingKind::value,
                          path + L": " + (length ? name.substr(0, length) : L"(default)"),
                          {type, hashOf(data.data(), size)});
        }
    }

    void addKeys(HKEY key, const std::wstring& path, DWORD count) {
        constexpr DWORD longest = 256;
        for (DWORD index = 0; index < count; ++index) {
            wchar_t name[longest];
            DWORD length = longest;
            if (RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS)
                continue;
            const std::wstring inner = path + L"\\" + name;
            if (album.add(ThingKind::key, inner))
                addAllIn(key, name, inner);
        }
    }

    Album& album;
};

/// Those that share a process with others are the system's, and come and go as it needs them.
void addServices(Album& album) {
    const ServicePtr manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ENUMERATE_SERVICE));
    if (!manager)
        return;
    DWORD needed = 0;
    DWORD count = 0;
    DWORD resume = 0;
    std::vector<BYTE> buffer(0x40000);
    EnumServicesStatusExW(manager.get(), SC_ENUM_PROCESS_INFO, SERVICE_WIN32, SERVICE_STATE_ALL,
                          buffer.data(), static_cast<DWORD>(buffer.size()), &needed, &count,
                          &resume, nullptr);
    const auto* services = reinterpret_cast<const ENUM_SERVICE_STATUS_PROCESSW*>(buffer.data());
    for (DWORD i = 0; i < count; ++i) {
        const SERVICE_STATUS_PROCESS& status = services[i].ServiceStatusProcess;
        const bool isAlone = status.dwServiceType & SERVICE_WIN32_OWN_PROCESS;
        album.add(ThingKind::service, services[i].lpServiceName,
                  {isAlone && status.dwCurrentState != SERVICE_STOPPED});
    }
}

/// The system's list has two texts for each file: what it is now, and what it will be; an empty one
/// for a file that will be deleted.
void addRestarts(Album& album) {
    constexpr wchar_t key[] = L"System\\CurrentControlSet\\Control\\Session Manager";
    constexpr wchar_t name[] = L"PendingFileRenameOperations";
    DWORD size = 0;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_MULTI_SZ, nullptr, nullptr, &size) !=
        ERROR_SUCCESS)
        return;
    std::wstring list(size / sizeof(wchar_t) + 2, L'\0');
    if (RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_MULTI_SZ, nullptr, list.data(),
                     &size) != ERROR_SUCCESS)
        return;
    for (const wchar_t* text = list.c_str(); *text;) {
        const std::wstring_view source(text);
        const std::wstring_view target(text + source.size() + 1);
        album.add(ThingKind::restart, std::wstring(source) +
                                          (target.empty() ? L" goes" : L" becomes ") +
                                          std::wstring(target));
        text += source.size() + 1 + target.size() + 1;
    }
}

}  // namespace

bool Thing::isBefore(const Thing& other) const {
    return std::tie(kind, name) < std::tie(other.kind, other.name);
}

Picture takePicture(const std::vector<std::wstring>& besides) {
    wchar_t windows[MAX_PATH] = L"C:\\Windows";
    GetWindowsDirectoryW(windows, MAX_PATH);
    Album album(besides);
    Files(album).addAllIn(std::wstring(windows, 2));
    Keys keys(album);
    keys.addAllIn(HKEY_LOCAL_MACHINE, nullptr, L"HKEY_LOCAL_MACHINE");
    keys.addAllIn(HKEY_CURRENT_USER, nullptr, L"HKEY_CURRENT_USER");
    keys.addAllIn(HKEY_USERS, L".DEFAULT", L"HKEY_USERS\\.DEFAULT");
    addServices(album);
    addRestarts(album);
    std::sort(album.picture.begin(), album.picture.end(),
              [](const Thing& one, const Thing& other) { return one.isBefore(other); });
    return std::move(album.picture);
}
