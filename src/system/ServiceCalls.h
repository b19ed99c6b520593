#pragma once

#include <windows.h>

#include "system/CallTable.h"

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
TEMZ_CALL_TABLE(ServiceCalls, serviceCalls, "service", TEMZ_SERVICE_CALLS, TEMZ_WIN32_CALL)
