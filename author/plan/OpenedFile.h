#pragma once

#include <windows.h>

#include "system/UniqueHandle.h"

struct OpenedFileTraits {
    using Handle = HANDLE;
    static Handle invalid() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { CloseHandle(handle); }
};
/// An open file, or a snapshot of processes.
using OpenedFile = UniqueHandle<OpenedFileTraits>;

/// Opens what is there, in a way that hinders nobody.
inline OpenedFile openFile(const wchar_t* path, DWORD access, DWORD flags = 0) {
    constexpr DWORD withEverybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return OpenedFile(
        CreateFileW(path, access, withEverybody, nullptr, OPEN_EXISTING, flags, nullptr));
}
