#pragma once

#include "system/SystemLibrary.h"

/// Has the registry and the services. Each of its own libraries is one more to load, for scripts
/// that may have neither.
inline constinit SystemLibrary accessLibrary(L"advapi32.dll");
