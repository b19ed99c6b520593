#pragma once

#include <windows.h>

#include <objbase.h>

/// The Win32 calls of a safe start; tests replace them.
struct StartCalls {
    decltype(&::SetErrorMode) SetErrorMode = ::SetErrorMode;
    decltype(&::GetModuleHandleW) GetModuleHandleW = ::GetModuleHandleW;
    decltype(&::GetProcAddress) GetProcAddress = ::GetProcAddress;
    decltype(&::SetDllDirectoryW) SetDllDirectoryW = ::SetDllDirectoryW;
    decltype(&::CoInitializeEx) CoInitializeEx = ::CoInitializeEx;
    decltype(&::CoUninitialize) CoUninitialize = ::CoUninitialize;
};

inline StartCalls startCalls;

/// The first thing in a host's main function, and alive until its end. From then on, as far as the
/// running version of Windows can do it,
/// - no box of the system waits for somebody to close it,
/// - libraries without a path come from the system directory alone,
/// - junctions that ordinary users have made aren't followed,
/// - COM is there for this thread.
class SafeStart {
public:
    SafeStart();
    SafeStart(const SafeStart&) = delete;
    SafeStart& operator=(const SafeStart&) = delete;
    ~SafeStart();

private:
    bool comStarted;
};
