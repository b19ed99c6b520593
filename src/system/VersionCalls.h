#pragma once

#include <windows.h>

#include "system/CallTable.h"
#include "system/SystemLibrary.h"

/// Of all libraries that the engine needs it is the one that Windows would take from the host's
/// folder.
inline constinit SystemLibrary versionLibrary(L"version.dll");

// NOLINTNEXTLINE(bugprone-macro-parentheses): a name in parentheses declares nothing.
#define TEMZ_VERSION_CALL(name) decltype(&::name) name = callSystem<versionLibrary, #name>;

/// The Win32 calls of the file version query.
#define TEMZ_VERSION_CALLS(CALL)  \
    CALL(GetFileVersionInfoSizeW) \
    CALL(GetFileVersionInfoW)     \
    CALL(VerQueryValueW)
TEMZ_CALL_TABLE(VersionCalls, versionCalls, "version", TEMZ_VERSION_CALLS, TEMZ_VERSION_CALL)
