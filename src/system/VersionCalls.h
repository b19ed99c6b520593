#pragma once

#include <windows.h>

#include "system/SystemLibrary.h"

/// Of all libraries that the engine needs it is the one that Windows would take from the host's
/// folder.
inline constinit SystemLibrary versionLibrary(L"version.dll");

/// The Win32 calls of the file version query; see FileCalls for the use of such a table.
struct VersionCalls {
    decltype(&::GetFileVersionInfoSizeW) GetFileVersionInfoSizeW =
        callSystem<versionLibrary, "GetFileVersionInfoSizeW">;
    decltype(&::GetFileVersionInfoW) GetFileVersionInfoW =
        callSystem<versionLibrary, "GetFileVersionInfoW">;
    decltype(&::VerQueryValueW) VerQueryValueW = callSystem<versionLibrary, "VerQueryValueW">;
};

inline VersionCalls versionCalls;
