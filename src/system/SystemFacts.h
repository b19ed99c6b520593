#pragma once

#include <windows.h>

#include <cstdint>

/// True on a 64-bit system, also when asked by a 32-bit process. False where the system can't tell.
bool isNative64Bit();

/// Asks for the version of the operating system; `record` is filled up to the size of an
/// OSVERSIONINFOW. False, with a line in the log, when the system doesn't answer.
bool getOsVersion(uint32_t& major, uint32_t& minor, OSVERSIONINFOW& record);
