#pragma once

#include <windows.h>

#include "system/CallTable.h"

/// The Win32 calls that load a library and find what it exports.
#define TEMZ_LIBRARY_CALLS(CALL) \
    CALL(LoadLibraryW)           \
    CALL(GetProcAddress)         \
    CALL(FreeLibrary)
TEMZ_CALL_TABLE(LibraryCalls, libraryCalls, "library", TEMZ_LIBRARY_CALLS, TEMZ_WIN32_CALL)
