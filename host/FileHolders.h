#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// The Win32 calls that reach the restart manager; tests replace them, since Wine's knows nobody.
struct HolderCalls {
    decltype(&::LoadLibraryExW) LoadLibraryExW = ::LoadLibraryExW;
    decltype(&::GetProcAddress) GetProcAddress = ::GetProcAddress;
};

inline HolderCalls holderCalls;

/// The programs that hold a file, as the system's restart manager knows them: "sync.exe (4312)".
/// Empty when there are none and when it can't be asked.
std::vector<std::wstring> holdersOf(const std::wstring& path);
