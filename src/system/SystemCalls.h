#pragma once

#include <windows.h>

/// The Win32 calls that tell facts of the system; see FileCalls for the use of such a table.
struct SystemCalls {
    decltype(&::GetModuleHandleW) GetModuleHandleW = ::GetModuleHandleW;
    decltype(&::GetProcAddress) GetProcAddress = ::GetProcAddress;
    decltype(&::GetVersionExW) GetVersionExW = ::GetVersionExW;
};

inline SystemCalls systemCalls;
