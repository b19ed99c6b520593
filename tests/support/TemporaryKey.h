#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

/// A key of the registry that lives as long as the object.
class TemporaryKey {
public:
    TemporaryKey(HKEY root, const std::wstring& path) : root(root), path(path) {
        EXPECT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                                  nullptr),
                  ERROR_SUCCESS);
    }
    TemporaryKey(const TemporaryKey&) = delete;
    TemporaryKey& operator=(const TemporaryKey&) = delete;
    ~TemporaryKey() {
        RegCloseKey(key);
        RegDeleteTreeW(root, path.c_str());
    }

    /// Writes a text in the key or in one below it.
    void set(const wchar_t* subKey, const wchar_t* name, const std::wstring& text) const {
        EXPECT_EQ(RegSetKeyValueW(key, subKey, name, REG_SZ, text.c_str(),
                                  static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
    }

private:
    const HKEY root;
    const std::wstring path;
    HKEY key = nullptr;
};
