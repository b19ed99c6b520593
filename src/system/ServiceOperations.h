#pragma once

#include <windows.h>

#include <cstdint>

#include "system/ServiceCalls.h"
#include "system/UniqueHandle.h"

struct ServiceHandleTraits {
    using Handle = SC_HANDLE;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { serviceCalls.CloseServiceHandle(handle); }
};
/// A handle of the service manager or of a service.
using ServiceHandle = UniqueHandle<ServiceHandleTraits>;

// The limits of both waits are in milliseconds and tested only between two looks at the service:
// the first comes after a second, so a limit up to that means one look. 0 stands for no limit.

/// Starts a service and waits while it is starting. True when it runs at the end.
bool startServiceAndWait(const wchar_t* name, uint32_t timeoutMs);

/// Stops a service and waits while it is stopping. True when it has stopped at the end, or when
/// there is no such service. For one that is stopped already, two handles stay open.
bool stopServiceAndWait(const wchar_t* name, uint32_t timeoutMs);

/// Deletes a service; the system keeps one that runs until it has stopped. True also when there is
/// no such service.
bool deleteServiceByName(const wchar_t* name);

/// Reads how a service is started, one of the system's SERVICE_..._START. On failure the
/// result is false and `startType` untouched; the log tells it, unless the service manager answers
/// a question for a size with success.
bool queryServiceStartType(const wchar_t* name, uint32_t& startType, ServiceHandle manager);

/// Sets how a service is started. True when it is so at the end; the log tells a failure.
bool changeServiceStartType(const wchar_t* name, uint32_t startType);
