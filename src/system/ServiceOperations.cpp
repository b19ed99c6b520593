#include "system/ServiceOperations.h"

#include <memory>
#include <utility>

#include "logging/Log.h"
#include "system/ClockCalls.h"

namespace {

constexpr DWORD controlAccess = SERVICE_QUERY_CONFIG | SERVICE_CHANGE_CONFIG |
                                SERVICE_QUERY_STATUS | SERVICE_START | SERVICE_STOP;

/// What a service is given before the first look at it, in milliseconds.
constexpr DWORD firstSleep = 1000;

/// A change of state that is waited for.
struct Transition {
    DWORD pending;
    DWORD wanted;
    DWORD pollInterval;  // milliseconds
};
constexpr Transition starting = {SERVICE_START_PENDING, SERVICE_RUNNING, 500};
constexpr Transition stopping = {SERVICE_STOP_PENDING, SERVICE_STOPPED, 1000};

struct DatabaseLockTraits {
    using Handle = SC_LOCK;
    static Handle invalid() { return nullptr; }
    static void close(Handle lock) { serviceCalls.UnlockServiceDatabase(lock); }
};
using DatabaseLock = UniqueHandle<DatabaseLockTraits>;

struct LocalMemory {
    void operator()(void* memory) const { serviceCalls.LocalFree(memory); }
};
using ServiceConfig = std::unique_ptr<QUERY_SERVICE_CONFIGW, LocalMemory>;

ServiceHandle openManager() {
    return ServiceHandle(serviceCalls.OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
}

ServiceHandle openService(const ServiceHandle& manager, const wchar_t* name, DWORD access) {
    return ServiceHandle(serviceCalls.OpenServiceW(manager.get(), name, access));
}

/// Waits while the service is on its way, and tells whether it has arrived. The limit is tested
/// ahead of the state, so that a short one takes the first state as it is.
bool waitFor(const Transition& transition, const ServiceHandle& service, SERVICE_STATUS& status,
             uint32_t timeoutMs) {
    const DWORD start = clockCalls.GetTickCount();
    clockCalls.Sleep(firstSleep);
    while (serviceCalls.QueryServiceStatus(service.get(), &status)) {
        const DWORD elapsed = clockCalls.GetTickCount() - start;
        if (timeoutMs != 0 && elapsed >= timeoutMs)
            break;
        if (status.dwCurrentState != transition.pending)
            break;
        clockCalls.Sleep(transition.pollInterval);
    }
    return status.dwCurrentState == transition.wanted;
}

}  // namespace

bool startServiceAndWait(const wchar_t* name, uint32_t timeoutMs) {
    const ServiceHandle manager = openManager();
    if (!manager)
        return false;
    const ServiceHandle service = openService(manager, name, controlAccess);
    if (!service)
        return false;
    SERVICE_STATUS status{};
    serviceCalls.QueryServiceStatus(service.get(), &status);
    if (status.dwCurrentState == SERVICE_RUNNING)
        return true;
    if (!serviceCalls.StartServiceW(service.get(), 0, nullptr)) {
        // Somebody else may have started it in the meantime.
        serviceCalls.QueryServiceStatus(service.get(), &status);
        return status.dwCurrentState == SERVICE_RUNNING;
    }
    return waitFor(starting, service, status, timeoutMs);
}

bool stopServiceAndWait(const wchar_t* name, uint32_t timeoutMs) {
    ServiceHandle manager = openManager();
    if (!manager)
        return false;
    ServiceHandle service = openService(manager, name, controlAccess);
    if (!service)
        return GetLastError() == ERROR_SERVICE_DOES_NOT_EXIST;
    SERVICE_STATUS status{};
    serviceCalls.QueryServiceStatus(service.get(), &status);
    if (status.dwCurrentState == SERVICE_STOPPED) {
        service.release();
        manager.release();
        return true;
    }
    if (!serviceCalls.ControlService(service.get(), SERVICE_CONTROL_STOP, &status))
        return false;
    return waitFor(stopping, service, status, timeoutMs);
}

bool deleteServiceByName(const wchar_t* name) {
    const ServiceHandle manager = openManager();
    if (!manager)
        return false;
    const ServiceHandle service = openService(manager, name, SERVICE_ALL_ACCESS);
    if (!service)
        return GetLastError() == ERROR_SERVICE_DOES_NOT_EXIST;
    return serviceCalls.DeleteService(service.get());
}

bool queryServiceStartType(const wchar_t* name, uint32_t& startType, ServiceHandle manager) {
    const ServiceHandle service = openService(manager, name, SERVICE_QUERY_CONFIG);
    if (!service) {
        writeLog(ERROR, "OpenService failed:", GetLastError());
        return false;
    }
    DWORD size = 0;
    if (serviceCalls.QueryServiceConfigW(service.get(), nullptr, 0, &size))
        return false;
    const DWORD error = GetLastError();
    ServiceConfig config;
    if (error == ERROR_INSUFFICIENT_BUFFER) {
        config.reset(
            static_cast<QUERY_SERVICE_CONFIGW*>(serviceCalls.LocalAlloc(LMEM_ZEROINIT, size)));
        if (config && serviceCalls.QueryServiceConfigW(service.get(), config.get(), size, &size)) {
            startType = config->dwStartType;
            return true;
        }
    }
    writeLog(ERROR, "QueryServiceConfig failed:", error);
    return false;
}

bool changeServiceStartType(const wchar_t* name, uint32_t startType) {
    uint32_t current = 0;
    if (ServiceHandle reader = openManager();
        reader && queryServiceStartType(name, current, std::move(reader)) && current == startType)
        return true;

    const ServiceHandle manager = openManager();
    if (!manager) {
        writeLog(ERROR, "OpenSCManager failed:", GetLastError());
        return false;
    }
    const DatabaseLock lock(serviceCalls.LockServiceDatabase(manager.get()));
    if (!lock)
        writeLog(WARNNING, "Database lock failed:", GetLastError());
    const ServiceHandle service = openService(manager, name, SERVICE_CHANGE_CONFIG);
    if (!service) {
        writeLog(ERROR, "OpenService failed:", GetLastError());
        return false;
    }
    if (!serviceCalls.ChangeServiceConfigW(service.get(), SERVICE_NO_CHANGE, startType,
                                           SERVICE_NO_CHANGE, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, nullptr)) {
        writeLog(ERROR, "ChangeServiceConfig failed:", GetLastError());
        return false;
    }
    return true;
}
