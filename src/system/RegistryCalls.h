#pragma once

#include <windows.h>

#include "system/AccessLibrary.h"
#include "system/CallTable.h"

// NOLINTNEXTLINE(bugprone-macro-parentheses): a name in parentheses declares nothing.
#define TEMZ_REGISTRY_CALL(name) decltype(&::name) name = callSystem<accessLibrary, #name>;

/// The Win32 calls of the registry operations.
#define TEMZ_REGISTRY_CALLS(CALL) \
    CALL(RegCreateKeyExW)         \
    CALL(RegOpenKeyExW)           \
    CALL(RegQueryInfoKeyW)        \
    CALL(RegEnumKeyExW)           \
    CALL(RegDeleteKeyW)           \
    CALL(RegSetValueExW)          \
    CALL(RegCloseKey)
TEMZ_CALL_TABLE(RegistryCalls, registryCalls, "registry", TEMZ_REGISTRY_CALLS, TEMZ_REGISTRY_CALL)
