#pragma once

#include <windows.h>

/// The Win32 calls of the file operations. The engine calls through this table, so a test can
/// replace any single one while all others stay real.
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

inline constinit FileCalls fileCalls;
