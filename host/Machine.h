#pragma once

#include <string>

// What the program says of the machine and of who runs it.

/// The true version of Windows: "10.0.19045". Unlike others, not made up for the program's sake.
std::wstring windowsVersion();

/// Who runs the program: "DOMAIN\name". Empty when the system doesn't say.
std::wstring userName();

/// The same as an identifier of the system's: "S-1-5-21-…".
std::wstring userId();

/// Whom a file or folder belongs to, likewise.
std::wstring ownerOf(const std::wstring& path);

/// Whether the process has an administrator's rights.
bool isElevated();

/// The local time as "2026-11-14 07:03:09".
std::wstring timeStamp();

/// The SHA-256 of a file in lower-case hexadecimal digits. Empty when it can't be had.
std::wstring sha256OfFile(const std::wstring& path);

/// The whole path of a file that may be relative; the path itself when the system doesn't say.
std::wstring wholePath(const std::wstring& path);
