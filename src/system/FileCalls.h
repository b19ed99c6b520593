#pragma once

#include <windows.h>

#include "system/CallTable.h"

/// The Win32 calls of the file operations.
#define TEMZ_FILE_CALLS(CALL) \
    CALL(FindFirstFileW)      \
    CALL(FindNextFileW)       \
    CALL(FindClose)           \
    CALL(DeleteFileW)         \
    CALL(GetFileAttributesW)  \
    CALL(SetFileAttributesW)  \
    CALL(CopyFileW)           \
    CALL(MoveFileExW)         \
    CALL(CreateDirectoryW)    \
    CALL(RemoveDirectoryW)    \
    CALL(GetModuleFileNameW)
TEMZ_CALL_TABLE(FileCalls, fileCalls, "file", TEMZ_FILE_CALLS, TEMZ_WIN32_CALL)
