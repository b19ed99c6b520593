#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

/// Holds a file open for the life of the object so that nobody else can open it, as a program does
/// that works with it.
class LockedFile {
public:
    explicit LockedFile(const std::wstring& path)
        : handle(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    ~LockedFile() { CloseHandle(handle); }

private:
    HANDLE handle;
};
