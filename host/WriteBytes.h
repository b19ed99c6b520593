#pragma once

#include <windows.h>

#include <string_view>

/// The Win32 call that writes what the program tells; tests replace it, to have a disk that is
/// full.
struct WriteCalls {
    decltype(&::WriteFile) WriteFile = ::WriteFile;
};

inline WriteCalls writeCalls;

/// Writes all of it into what is open. Gives the system's error code; 0 when it is written.
inline DWORD writeBytes(HANDLE file, std::string_view bytes) {
    DWORD written = 0;
    if (!writeCalls.WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                              nullptr))
        return GetLastError();
    return written == bytes.size() ? ERROR_SUCCESS : ERROR_DISK_FULL;
}
