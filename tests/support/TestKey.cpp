#include "support/TestKey.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

#include "support/CommonPlaces.h"

namespace {

struct CloseKey {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using OpenKey = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

/// Nothing when there is no such key.
OpenKey open(const std::wstring& path, REGSAM access) {
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, access, &key);
    return OpenKey(key);
}

/// Makes a key with those missing above it, and gives whether it is new.
bool makeKey(const std::wstring& path) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &key, &disposition),
              ERROR_SUCCESS);
    RegCloseKey(key);
    return disposition == REG_CREATED_NEW_KEY;
}

void addKeysIn(const std::wstring& path, const std::wstring& prefix,
               std::vector<std::wstring>& list) {
    constexpr DWORD room = 300;
    const OpenKey key = open(path, KEY_READ);
    wchar_t name[room];
    DWORD length = room;
    for (DWORD index = 0; RegEnumKeyExW(key.get(), index, name, &length, nullptr, nullptr, nullptr,
                                        nullptr) == ERROR_SUCCESS;
         ++index, length = room) {
        list.push_back(prefix + name);
        addKeysIn(path + L"\\" + name, prefix + name + L"\\", list);
    }
}

/// Sets who may do what with a key: nobody anything, or everybody everything.
void setAccess(HKEY key, bool allowed) {
    ACL nobody;
    ASSERT_TRUE(InitializeAcl(&nobody, sizeof nobody, ACL_REVISION));
    SECURITY_DESCRIPTOR security;
    ASSERT_TRUE(InitializeSecurityDescriptor(&security, SECURITY_DESCRIPTOR_REVISION));
    ASSERT_TRUE(SetSecurityDescriptorDacl(&security, TRUE, allowed ? nullptr : &nobody, FALSE));
    EXPECT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &security), ERROR_SUCCESS);
}

}  // namespace

TestKey::TestKey() {
    static int made = 0;
    do
        root = std::wstring(commonKey) + L"\\test-" + std::to_wstring(GetCurrentProcessId()) +
               L"-" + std::to_wstring(made++);
    while (!makeKey(root));
}

TestKey::~TestKey() {
    EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, root.c_str()), ERROR_SUCCESS);
}

std::wstring TestKey::path(std::wstring_view name) const {
    return name.empty() ? root : root + L"\\" + std::wstring(name);
}

std::wstring TestKey::make(std::wstring_view name) const {
    makeKey(path(name));
    return path(name);
}

std::vector<std::wstring> TestKey::keys() const {
    std::vector<std::wstring> list;
    addKeysIn(root, L"", list);
    return list;
}

RefusedKey::RefusedKey(const std::wstring& path) {
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, WRITE_DAC, &key), ERROR_SUCCESS);
    setAccess(key, false);
}

RefusedKey::~RefusedKey() {
    setAccess(key, true);
    RegCloseKey(key);
}

void PrintTo(const StoredValue& value, std::ostream* stream) {
    constexpr char digits[] = "0123456789abcdef";
    *stream << "type " << value.type << ", bytes";
    for (const char byte : value.bytes)
        *stream << ' ' << digits[(byte >> 4) & 15] << digits[byte & 15];
}

StoredValue readValue(const std::wstring& path, const std::wstring& name) {
    const StoredValue missing{REG_NONE, "<missing>"};
    const OpenKey key = open(path, KEY_QUERY_VALUE);
    StoredValue value{};
    DWORD size = 0;
    if (!key || RegQueryValueExW(key.get(), name.c_str(), nullptr, nullptr, nullptr, &size) !=
                    ERROR_SUCCESS)
        return missing;
    value.bytes.resize(size);
    if (RegQueryValueExW(key.get(), name.c_str(), nullptr, &value.type,
                         reinterpret_cast<BYTE*>(value.bytes.data()), &size) != ERROR_SUCCESS)
        return missing;
    value.bytes.resize(size);
    return value;
}

void writeValue(const std::wstring& path, const std::wstring& name, const StoredValue& value) {
    const OpenKey key = open(path, KEY_SET_VALUE);
    EXPECT_EQ(RegSetValueExW(key.get(), name.c_str(), 0, value.type,
                             reinterpret_cast<const BYTE*>(value.bytes.data()),
                             static_cast<DWORD>(value.bytes.size())),
              ERROR_SUCCESS);
}

bool keyExists(const std::wstring& path) {
    return open(path, KEY_READ) != nullptr;
}

std::string bytesOf(std::wstring_view text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
}
