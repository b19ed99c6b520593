#pragma once

#include <windows.h>

#include <cstddef>

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
