#pragma once

#include <windows.h>

#include <shlobj.h>

/// The Win32 calls of the shell operations; see FileCalls for the use of such a table.
struct ShellCalls {
    decltype(&::SHGetSpecialFolderPathW) SHGetSpecialFolderPathW = ::SHGetSpecialFolderPathW;
};

inline ShellCalls shellCalls;
