#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

/// For the life of the object, the `failing` allocations of a loaded library after the next
/// `succeeding` ones fail. It stands in the library's import table, for all functions of the C
/// runtime that allocate, so that the test itself and the system go on as ever.
class FailingMalloc {
public:
    explicit FailingMalloc(size_t succeeding, size_t failing = 1,
                           HMODULE library = GetModuleHandleW(L"TEMZC.dll"));
    FailingMalloc(const FailingMalloc&) = delete;
    FailingMalloc& operator=(const FailingMalloc&) = delete;
    ~FailingMalloc();

    /// Whether an allocation has failed yet.
    bool hasFailed() const;

private:
    const HMODULE library;
};

/// Makes a thread stand still where TEMZC.dll allocates for it next, until it is let go.
class PausedMalloc {
public:
    PausedMalloc();
    PausedMalloc(const PausedMalloc&) = delete;
    PausedMalloc& operator=(const PausedMalloc&) = delete;
    ~PausedMalloc();

    /// The calling thread is the one.
    void holdThisThread() const;
    /// Whether it has come there within some seconds.
    bool waitForThread() const;
    void letGo() const;

private:
    const FailingMalloc never{SIZE_MAX};
};
