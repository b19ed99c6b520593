#pragma once

#include <windows.h>

/// The Win32 calls of the service operations; see FileCalls for the use of such a table.
struct ServiceCalls {
    decltype(&::OpenSCManagerW) OpenSCManagerW = ::OpenSCManagerW;
    decltype(&::OpenServiceW) OpenServiceW = ::OpenServiceW;
    decltype(&::QueryServiceStatus) QueryServiceStatus = ::QueryServiceStatus;
    decltype(&::StartServiceW) StartServiceW = ::StartServiceW;
    decltype(&::ControlService) ControlService = ::ControlService;
    decltype(&::DeleteService) DeleteService = ::DeleteService;
    decltype(&::QueryServiceConfigW) QueryServiceConfigW = ::QueryServiceConfigW;
    decltype(&::LockServiceDatabase) LockServiceDatabase = ::LockServiceDatabase;
    decltype(&::UnlockServiceDatabase) UnlockServiceDatabase = ::UnlockServiceDatabase;
    decltype(&::ChangeServiceConfigW) ChangeServiceConfigW = ::ChangeServiceConfigW;
    decltype(&::CloseServiceHandle) CloseServiceHandle = ::CloseServiceHandle;
    decltype(&::LocalAlloc) LocalAlloc = ::LocalAlloc;
    decltype(&::LocalFree) LocalFree = ::LocalFree;
};

inline ServiceCalls serviceCalls;
