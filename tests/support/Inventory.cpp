#include "support/Inventory.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>

#include "support/Restart.h"

namespace {

struct WatchedKey {
    HKEY root;
    std::wstring path;
    std::wstring title;
};

const WatchedKey watchedKeys[] = {
    {HKEY_LOCAL_MACHINE, L"Software", L"HKEY_LOCAL_MACHINE\\Software\\"},
    {HKEY_CURRENT_USER, L"Software", L"HKEY_CURRENT_USER\\Software\\"},
    {HKEY_CLASSES_ROOT, L"", L"HKEY_CLASSES_ROOT\\"},
    {HKEY_LOCAL_MACHINE, L"System\\CurrentControlSet\\Services", L"the service "},
};

void addKeys(const WatchedKey& watched, Inventory& inventory) {
    HKEY key = nullptr;
    const LSTATUS opened =
        RegOpenKeyExW(watched.root, watched.path.c_str(), 0, KEY_ENUMERATE_SUB_KEYS, &key);
    ASSERT_EQ(opened, ERROR_SUCCESS);
    wchar_t name[256];
    DWORD length = std::size(name);
    for (DWORD index = 0; RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr,
                                        nullptr) == ERROR_SUCCESS;
         ++index, length = std::size(name))
        inventory.insert(watched.title + name);
    RegCloseKey(key);
}

}  // namespace

Inventory takeInventory() {
    Inventory inventory;
    for (const auto& entry : std::filesystem::directory_iterator(L"C:\\"))
        inventory.insert(entry.path().wstring());
    for (const WatchedKey& watched : watchedKeys)
        addKeys(watched, inventory);
    if (const std::optional<std::wstring> pending = pendingReplacements())
        inventory.insert(L"at the next restart: " + *pending);
    return inventory;
}
