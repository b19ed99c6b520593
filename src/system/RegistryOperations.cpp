#include "system/RegistryOperations.h"

#include <iterator>
#include <string>
#include <vector>

#include "system/RegistryCalls.h"
#include "system/UniqueHandle.h"

namespace {

struct KeyTraits {
    using Handle = HKEY;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { registryCalls.RegCloseKey(handle); }
};
using Key = UniqueHandle<KeyTraits>;

/// Characters of the longest subkey name that is seen, its terminator included: one of 255, the
/// longest that there is, is left where it is.
constexpr DWORD subkeyNameLength = 255;

LSTATUS openKey(HKEY parent, const wchar_t* subkey, REGSAM access, Key& key) {
    HKEY opened = nullptr;
    const LSTATUS result = registryCalls.RegOpenKeyExW(parent, subkey, 0, access, &opened);
    if (result == ERROR_SUCCESS)
        key.reset(opened);
    return result;
}

/// The names of the keys directly below one. One that can't be read is left out.
std::vector<std::wstring> subkeyNames(const Key& key) {
    wchar_t className[260];
    DWORD classLength = 260;
    DWORD count = 0;
    registryCalls.RegQueryInfoKeyW(key.get(), className, &classLength, nullptr, &count, nullptr,
                                   nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    std::vector<std::wstring> names;
    for (DWORD index = 0; index < count; ++index) {
        wchar_t name[subkeyNameLength];
        DWORD length = std::size(name);
        if (registryCalls.RegEnumKeyExW(key.get(), index, name, &length, nullptr, nullptr, nullptr,
                                        nullptr) == ERROR_SUCCESS)
            names.emplace_back(name, length);
    }
    return names;
}

}  // namespace

bool createKey(HKEY root, const wchar_t* subkey) {
    HKEY leftOpen = nullptr;
    return registryCalls.RegCreateKeyExW(root, subkey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                         KEY_ALL_ACCESS, nullptr, &leftOpen,
                                         nullptr) == ERROR_SUCCESS;
}

bool deleteKeyTree(HKEY parent, const wchar_t* subkey) {
    {
        Key key;
        const LSTATUS result = openKey(parent, subkey, KEY_ALL_ACCESS, key);
        if (result == ERROR_FILE_NOT_FOUND)
            return true;
        if (result != ERROR_SUCCESS)
            return false;
        // All names are gathered before the first deletion, which would shift the others.
        for (const std::wstring& name : subkeyNames(key))
            deleteKeyTree(key.get(), name.c_str());
    }
    return registryCalls.RegDeleteKeyW(parent, subkey) == ERROR_SUCCESS;
}

bool setValue(HKEY root, const wchar_t* subkey, const wchar_t* name, uint32_t type,
              const void* data, uint32_t size) {
    Key key;
    if (openKey(root, subkey, KEY_SET_VALUE, key) != ERROR_SUCCESS)
        return false;
    return registryCalls.RegSetValueExW(key.get(), name, 0, type, static_cast<const BYTE*>(data),
                                        size) == ERROR_SUCCESS;
}
