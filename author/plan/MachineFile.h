#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

// What the machine tells of its files, and what it would say to a change of them, while nothing is
// changed.

/// Opens a file or, with FILE_FLAG_BACKUP_SEMANTICS, a directory with the rights that a change
/// needs, in a way that hinders nobody, and closes it at once. The error of the system; that of
/// success when the change may be made.
DWORD tryToOpen(const std::wstring& path, DWORD access, DWORD flags = 0);

/// Whether both can be read and hold the same.
bool haveSameContent(const std::wstring& left, const std::wstring& right);

/// Whether it begins as programs and libraries do.
bool isProgramFile(const std::wstring& path);

/// The bytes that are free for the user on the drive of a directory, where that can be told.
std::optional<uint64_t> freeBytes(const std::wstring& directory);

/// Size and time of a file for people: "800 KB, 2024-01-01 10:00", with its version ahead if it has
/// one.
std::wstring fileText(const std::optional<uint64_t>& version, uint64_t size,
                      const FILETIME& written);
