#pragma once

#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

/// The Win32 calls of the shell operations and of what they need of COM; see FileCalls for the use
/// of such a table.
struct ShellCalls {
    decltype(&::SHGetSpecialFolderPathW) SHGetSpecialFolderPathW = ::SHGetSpecialFolderPathW;
    decltype(&::SHChangeNotify) SHChangeNotify = ::SHChangeNotify;
    decltype(&::ShellExecuteExW) ShellExecuteExW = ::ShellExecuteExW;
    decltype(&::CoInitialize) CoInitialize = ::CoInitialize;
    decltype(&::CoUninitialize) CoUninitialize = ::CoUninitialize;
    decltype(&::CoCreateInstance) CoCreateInstance = ::CoCreateInstance;
};

inline ShellCalls shellCalls;
