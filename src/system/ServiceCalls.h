#pragma once

#include <windows.h>

#include <string_view>

#include "system/AccessLibrary.h"
#include "system/CallTable.h"

inline constinit SystemLibrary memoryLibrary(L"kernel32.dll");

/// Which library has a function: those for the memory of an answer begin alike.
constexpr SystemLibrary& serviceLibraryOf(std::string_view function) {
    return function.starts_with("Local") ? memoryLibrary : accessLibrary;
}

// NOLINTNEXTLINE(bugprone-macro-parentheses): a name in parentheses declares nothing.
#define TEMZ_SERVICE_CALL(name) decltype(&::name) name = callSystem<serviceLibraryOf(#name), #name>;

/// The Win32 calls of the service operations.
#define TEMZ_SERVICE_CALLS(CALL) \
    CALL(OpenSCManagerW)         \
    CALL(OpenServiceW)           \
    CALL(QueryServiceStatus)     \
    CALL(StartServiceW)          \
    CALL(ControlService)         \
    CALL(DeleteService)          \
    CALL(QueryServiceConfigW)    \
    CALL(LockServiceDatabase)    \
    CALL(UnlockServiceDatabase)  \
    CALL(ChangeServiceConfigW)   \
    CALL(CloseServiceHandle)     \
    CALL(LocalAlloc)             \
    CALL(LocalFree)
TEMZ_CALL_TABLE(ServiceCalls, serviceCalls, "service", TEMZ_SERVICE_CALLS, TEMZ_SERVICE_CALL)
