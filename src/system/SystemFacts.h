#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

/// True on a 64-bit system, also when asked by a 32-bit process. False where the system can't tell.
bool isNative64Bit();

/// Asks for the version of the operating system; `record` is filled up to the size of an
/// OSVERSIONINFOW. When the system doesn't answer, the result is false, a line
/// stands in the log, and both numbers stay as they were.
bool getOsVersion(uint32_t& major, uint32_t& minor, OSVERSIONINFOW& record);

struct OsVersion {
    uint32_t major;
    uint32_t minor;
};

/// The version of the operating system, asked for with the larger of the two version records and
/// then with the smaller. Nothing, with a line in the log, when both fail.
std::optional<OsVersion> askOsVersion();
