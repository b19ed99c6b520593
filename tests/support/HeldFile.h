#pragma once

#include <windows.h>

#include <string>

/// Holds a file open and shares it with nobody for the life of the object: meanwhile the system
/// refuses to replace or delete it (ERROR_SHARING_VIOLATION).
class HeldFile {
public:
    explicit HeldFile(const std::wstring& path)
        : handle(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                             FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;
    ~HeldFile() { CloseHandle(handle); }

private:
    const HANDLE handle;
};
