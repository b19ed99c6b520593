#pragma once

#include <windows.h>

/// The Win32 calls of the registry operations; see FileCalls for the use of such a table.
struct RegistryCalls {
    decltype(&::RegCreateKeyExW) RegCreateKeyExW = ::RegCreateKeyExW;
    decltype(&::RegOpenKeyExW) RegOpenKeyExW = ::RegOpenKeyExW;
    decltype(&::RegQueryInfoKeyW) RegQueryInfoKeyW = ::RegQueryInfoKeyW;
    decltype(&::RegEnumKeyExW) RegEnumKeyExW = ::RegEnumKeyExW;
    decltype(&::RegDeleteKeyW) RegDeleteKeyW = ::RegDeleteKeyW;
    decltype(&::RegSetValueExW) RegSetValueExW = ::RegSetValueExW;
    decltype(&::RegCloseKey) RegCloseKey = ::RegCloseKey;
};

inline RegistryCalls registryCalls;
