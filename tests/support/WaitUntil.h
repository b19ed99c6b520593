#pragma once

#include <windows.h>

/// Waits for what other programs bring about; not for ever, and false then.
template <class Condition>
bool waitUntil(const Condition& holds) {
    constexpr DWORD patience = 30'000;  // milliseconds
    constexpr DWORD pollInterval = 5;
    const ULONGLONG start = GetTickCount64();
    while (!holds()) {
        if (GetTickCount64() - start > patience)
            return false;
        Sleep(pollInterval);
    }
    return true;
}
