#pragma once

#include <windows.h>

/// The Win32 calls of the file version query; see FileCalls for the use of such a table.
struct VersionCalls {
    decltype(&::GetFileVersionInfoSizeW) GetFileVersionInfoSizeW = ::GetFileVersionInfoSizeW;
    decltype(&::GetFileVersionInfoW) GetFileVersionInfoW = ::GetFileVersionInfoW;
    decltype(&::VerQueryValueW) VerQueryValueW = ::VerQueryValueW;
};

inline VersionCalls versionCalls;
