#pragma once

#include <windows.h>

/// The Win32 calls of the file operations. The engine calls through this table, so a test can
/// replace any single one while all others stay real.
///
/// Not every compiler takes the address of an imported function for a constant, so a table may be
/// filled while the library is loaded: nothing calls through one before that.
struct FileCalls {
    decltype(&::FindFirstFileW) FindFirstFileW = ::FindFirstFileW;
    decltype(&::FindNextFileW) FindNextFileW = ::FindNextFileW;
    decltype(&::FindClose) FindClose = ::FindClose;
    decltype(&::DeleteFileW) DeleteFileW = ::DeleteFileW;
    decltype(&::GetFileAttributesW) GetFileAttributesW = ::GetFileAttributesW;
    decltype(&::SetFileAttributesW) SetFileAttributesW = ::SetFileAttributesW;
    decltype(&::CopyFileW) CopyFileW = ::CopyFileW;
    decltype(&::MoveFileExW) MoveFileExW = ::MoveFileExW;
    decltype(&::CreateDirectoryW) CreateDirectoryW = ::CreateDirectoryW;
    decltype(&::RemoveDirectoryW) RemoveDirectoryW = ::RemoveDirectoryW;
    decltype(&::GetModuleFileNameW) GetModuleFileNameW = ::GetModuleFileNameW;
};

inline FileCalls fileCalls;
