#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

/// A registry key of its own for one test, gone with the object together with all that it holds.
/// It stands below HKEY_CURRENT_USER, as all keys that are named here.
class TestKey {
public:
    TestKey();
    TestKey(const TestKey&) = delete;
    TestKey& operator=(const TestKey&) = delete;
    ~TestKey();

    /// The full path of a key in this one; of the key itself for "".
    std::wstring path(std::wstring_view name = {}) const;

    /// Makes a key, with those missing above it, and gives its full path.
    std::wstring make(std::wstring_view name) const;

    /// The paths of all keys in this one, each before those in it.
    std::vector<std::wstring> keys() const;

private:
    std::wstring root;
};

/// Refuses all access to a key for the life of the object.
class RefusedKey {
public:
    explicit RefusedKey(const std::wstring& path);
    RefusedKey(const RefusedKey&) = delete;
    RefusedKey& operator=(const RefusedKey&) = delete;
    ~RefusedKey();

private:
    HKEY key = nullptr;
};

/// A value as the system stores it.
struct StoredValue {
    DWORD type;
    std::string bytes;
    bool operator==(const StoredValue&) const = default;
};

/// Shows a value in a failed test, with its bytes as hexadecimal digits.
void PrintTo(const StoredValue& value, std::ostream* stream);

/// The stored value; one of the type REG_NONE that holds "<missing>" when it isn't there.
StoredValue readValue(const std::wstring& path, const std::wstring& name);

void writeValue(const std::wstring& path, const std::wstring& name, const StoredValue& value);

bool keyExists(const std::wstring& path);

/// The bytes of a text in memory, without a terminator.
std::string bytesOf(std::wstring_view text);
