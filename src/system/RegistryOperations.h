#pragma once

#include <windows.h>

#include <cstdint>

// All three work in the native 64-bit view of the registry. What the system answers to a failure
// isn't told on.

/// Makes a key with all that is missing above it. True when it exists at the end. The key's handle
/// stays open until the process ends.
bool createKey(HKEY root, const wchar_t* subkey);

/// Deletes a key with its values and all keys below it, the deepest first. True when it is gone, or
/// was never there. What can be deleted is deleted even when something else can't be. An empty
/// `subkey` means all that is below `parent`, which itself stays and makes the result false.
bool deleteKeyTree(HKEY parent, const wchar_t* subkey);

/// Writes a value of `size` bytes into a key, which must exist.
bool setValue(HKEY root, const wchar_t* subkey, const wchar_t* name, uint32_t type,
              const void* data, uint32_t size);
