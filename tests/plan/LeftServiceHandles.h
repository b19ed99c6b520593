#pragma once

#include <set>
#include <utility>

#include "support/FakeCall.h"
#include "system/ServiceCalls.h"

/// Closes what a run leaves open of the service manager, which would keep a removed service.
class LeftServiceHandles {
public:
    void close() {
        for (const SC_HANDLE handle : std::exchange(handles, {}))
            closeHandle.real(handle);
    }

private:
    SC_HANDLE remember(SC_HANDLE handle) {
        const DWORD lastError = GetLastError();
        if (handle)
            handles.insert(handle);
        SetLastError(lastError);
        return handle;
    }

    std::set<SC_HANDLE> handles;
    const FakeCall<serviceCalls, &ServiceCalls::OpenSCManagerW> openManager{
        [this](auto... arguments) { return remember(openManager.real(arguments...)); }};
    const FakeCall<serviceCalls, &ServiceCalls::OpenServiceW> openService{
        [this](auto... arguments) { return remember(openService.real(arguments...)); }};
    const FakeCall<serviceCalls, &ServiceCalls::CloseServiceHandle> closeHandle{
        [this](SC_HANDLE handle) {
            handles.erase(handle);
            return closeHandle.real(handle);
        }};
};
