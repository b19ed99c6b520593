#pragma once

#include <windows.h>

#include <string>

#include "system/RegistryCalls.h"
#include "system/UniqueHandle.h"

struct MachineKeyTraits {
    using Handle = HKEY;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { RegCloseKey(handle); }
};
/// A key of the machine's registry.
using MachineKey = UniqueHandle<MachineKeyTraits>;

/// The system's own name of a key, which is one however the key was opened:
/// "\REGISTRY\USER\S-1-5-21...\Software".
std::wstring systemName(HKEY key);

/// Opens a key by its system name.
LSTATUS openBySystemName(const RegistryCalls& system, const std::wstring& name, REGSAM access,
                         MachineKey& key);
