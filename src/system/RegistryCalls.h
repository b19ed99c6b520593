#pragma once

#include <windows.h>

#include "system/CallTable.h"

/// The Win32 calls of the registry operations.
#define TEMZ_REGISTRY_CALLS(CALL) \
    CALL(RegCreateKeyExW)         \
    CALL(RegOpenKeyExW)           \
    CALL(RegQueryInfoKeyW)        \
    CALL(RegEnumKeyExW)           \
    CALL(RegDeleteKeyW)           \
    CALL(RegSetValueExW)          \
    CALL(RegCloseKey)
TEMZ_CALL_TABLE(RegistryCalls, registryCalls, "registry", TEMZ_REGISTRY_CALLS, TEMZ_WIN32_CALL)
