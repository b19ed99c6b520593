#pragma once

#include <windows.h>

#include <tlhelp32.h>

/// The Win32 calls of the process operations; see FileCalls for the use of such a table.
struct ProcessCalls {
    decltype(&::CreateToolhelp32Snapshot) CreateToolhelp32Snapshot = ::CreateToolhelp32Snapshot;
    decltype(&::Process32FirstW) Process32FirstW = ::Process32FirstW;
    decltype(&::Process32NextW) Process32NextW = ::Process32NextW;
    decltype(&::Module32FirstW) Module32FirstW = ::Module32FirstW;
    decltype(&::OpenProcess) OpenProcess = ::OpenProcess;
    decltype(&::TerminateProcess) TerminateProcess = ::TerminateProcess;
    decltype(&::WaitForSingleObject) WaitForSingleObject = ::WaitForSingleObject;
    decltype(&::CloseHandle) CloseHandle = ::CloseHandle;
    decltype(&::FormatMessageW) FormatMessageW = ::FormatMessageW;
    decltype(&::FormatMessageA) FormatMessageA = ::FormatMessageA;
    decltype(&::LocalFree) LocalFree = ::LocalFree;
};

inline ProcessCalls processCalls;
