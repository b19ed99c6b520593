#include "plan/MachineKey.h"

#include <winternl.h>

#include <vector>

#include "plan/FilePath.h"

namespace {

struct KeyNameInformation {
    ULONG length;  ///< in bytes
    wchar_t name[1];
};
constexpr int keyNameInformation = 3;

using QueryKey = NTSTATUS(NTAPI*)(HANDLE key, int kind, void* buffer, ULONG size, ULONG* needed);

// The documented way to a key's name is this undeclared call.
QueryKey queryKey() {
    const HMODULE library = GetModuleHandleW(L"ntdll.dll");
    return reinterpret_cast<QueryKey>(
        reinterpret_cast<void*>(GetProcAddress(library, "NtQueryKey")));
}

struct Hive {
    std::wstring_view name;
    HKEY root;
};
const Hive hives[] = {{L"\\REGISTRY\\MACHINE", HKEY_LOCAL_MACHINE},
                      {L"\\REGISTRY\\USER", HKEY_USERS}};

/// The predefined keys that stand for others. Opened themselves they would only give themselves.
struct Link {
    HKEY root;
    const wchar_t* path;  ///< in HKEY_LOCAL_MACHINE
};
const Link links[] = {
    {HKEY_CLASSES_ROOT, L"Software\\Classes"},
    {HKEY_CURRENT_CONFIG, L"System\\CurrentControlSet\\Hardware Profiles\\Current"}};

std::wstring nameIn(HKEY root, const wchar_t* path) {
    HKEY key = nullptr;
    const LSTATUS error = RegOpenKeyExW(root, path, 0, MAXIMUM_ALLOWED, &key);
    const MachineKey owner(key);
    return error ? std::wstring() : systemName(key);
}

}  // namespace

std::wstring systemName(HKEY key) {
    for (const Hive& hive : hives)
        if (hive.root == key)
            return std::wstring(hive.name);
    for (const Link& link : links)
        if (link.root == key)
            return nameIn(HKEY_LOCAL_MACHINE, link.path);
    if (key == HKEY_CURRENT_USER) {
        HKEY user = nullptr;
        const LSTATUS error = RegOpenCurrentUser(MAXIMUM_ALLOWED, &user);
        const MachineKey owner(user);
        return error ? std::wstring() : systemName(user);
    }
    static const QueryKey query = queryKey();
    ULONG size = 0;
    query(key, keyNameInformation, nullptr, 0, &size);
    std::vector<ULONG> buffer(size / sizeof(ULONG) + 1);
    if (query(key, keyNameInformation, buffer.data(), size, &size) < 0)
        return {};
    const auto* information = reinterpret_cast<const KeyNameInformation*>(buffer.data());
    return {information->name, information->length / sizeof(wchar_t)};
}

LSTATUS openBySystemName(const RegistryCalls& system, const std::wstring& name, REGSAM access,
                         MachineKey& key) {
    for (const Hive& hive : hives) {
        if (!equalIgnoringCase(std::wstring_view(name).substr(0, hive.name.size()), hive.name))
            continue;
        std::wstring path = name.substr(hive.name.size());
        path.erase(0, path.find_first_not_of(L'\\'));
        HKEY opened = nullptr;
        const LSTATUS result = system.RegOpenKeyExW(hive.root, path.c_str(), 0, access, &opened);
        if (result == ERROR_SUCCESS)
            key.reset(opened);
        return result;
    }
    return ERROR_FILE_NOT_FOUND;
}
