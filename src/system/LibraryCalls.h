#pragma once

#include <windows.h>

/// The Win32 calls that load a library and find what it exports; see FileCalls for the use of such
/// a table.
struct LibraryCalls {
    decltype(&::LoadLibraryW) LoadLibraryW = ::LoadLibraryW;
    decltype(&::GetProcAddress) GetProcAddress = ::GetProcAddress;
    decltype(&::FreeLibrary) FreeLibrary = ::FreeLibrary;
};

inline LibraryCalls libraryCalls;
