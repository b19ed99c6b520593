#pragma once

#include <windows.h>

#include "logging/CLogSyn.h"

/// The lock of the log file: one critical section, so a thread may take it more than once.
class CLogFileSyn final : public CLogSyn {
public:
    CLogFileSyn() { InitializeCriticalSection(&section); }
    CLogFileSyn(const CLogFileSyn&) = delete;
    CLogFileSyn& operator=(const CLogFileSyn&) = delete;
    ~CLogFileSyn() { DeleteCriticalSection(&section); }

    void lock() override { EnterCriticalSection(&section); }
    void unlock() override { LeaveCriticalSection(&section); }

private:
    CRITICAL_SECTION section;
};
