#pragma once

#include <map>
#include <optional>
#include <string>

#include "plan/AnsweredCall.h"
#include "plan/Change.h"
#include "plan/EndedProcesses.h"
#include "plan/FilePath.h"
#include "plan/OwnHandles.h"
#include "plan/ShadowFiles.h"
#include "system/ServiceCalls.h"

/// The services as a run would leave them. Handles are opened really, with the rights that the run
/// asks for, and closed at the end at the latest. A service that is started runs at once, one that
/// is stopped has stopped.
class ShadowServices {
public:
    ShadowServices(const ShadowFiles& files, EndedProcesses& ended, ChangeListener& listener)
        : files(files), ended(ended), listener(listener) {}
    ShadowServices(const ShadowServices&) = delete;
    ShadowServices& operator=(const ShadowServices&) = delete;
    ~ShadowServices();

    SC_HANDLE answer(Call<&ServiceCalls::OpenSCManagerW>, const wchar_t* machine,
                     const wchar_t* database, DWORD access);
    SC_HANDLE answer(Call<&ServiceCalls::OpenServiceW>, SC_HANDLE manager, const wchar_t* name,
                     DWORD access);
    BOOL answer(Call<&ServiceCalls::QueryServiceStatus>, SC_HANDLE service, SERVICE_STATUS* status);
    BOOL answer(Call<&ServiceCalls::StartServiceW>, SC_HANDLE service, DWORD count,
                const wchar_t** arguments);
    BOOL answer(Call<&ServiceCalls::ControlService>, SC_HANDLE service, DWORD control,
                SERVICE_STATUS* status);
    BOOL answer(Call<&ServiceCalls::DeleteService>, SC_HANDLE service);
    BOOL answer(Call<&ServiceCalls::QueryServiceConfigW>, SC_HANDLE service,
                QUERY_SERVICE_CONFIGW* config, DWORD size, DWORD* needed);
    SC_LOCK answer(Call<&ServiceCalls::LockServiceDatabase>, SC_HANDLE manager);
    BOOL answer(Call<&ServiceCalls::UnlockServiceDatabase>, SC_LOCK lock);
    BOOL answer(Call<&ServiceCalls::ChangeServiceConfigW>, SC_HANDLE service, DWORD type,
                DWORD startType, DWORD errorControl, const wchar_t* program,
                const wchar_t* loadGroup, DWORD* tag, const wchar_t* dependencies,
                const wchar_t* account, const wchar_t* password, const wchar_t* displayName);
    BOOL answer(Call<&ServiceCalls::CloseServiceHandle>, SC_HANDLE handle);

private:
    struct Handle {
        SC_HANDLE real;
        std::wstring service;  ///< empty: it is the manager's
        DWORD access;
    };
    /// What the run has done to a service.
    struct Service {
        std::optional<DWORD> state;
        std::optional<DWORD> startType;
        bool isMarked = false;  ///< goes with the last handle to it, once it has stopped
        size_t handles = 0;     ///< of the run
    };

    SC_HANDLE realOf(SC_HANDLE handle) const;
    DWORD stateOf(const Handle& handle, SERVICE_STATUS& status) const;
    std::optional<DWORD> startTypeOf(const Handle& handle, std::wstring& program) const;
    DWORD refusalOfProgram(const std::wstring& commandLine) const;
    static DWORD refusalOf(const Handle* handle, DWORD right);
    DWORD start(const Handle* handle);
    DWORD stop(const Handle* handle, SERVICE_STATUS& status);
    DWORD remove(const Handle* handle);
    DWORD change(const Handle* handle, DWORD startType);
    void tell(ChangeKind kind, const std::wstring& service, const wchar_t* before,
              const wchar_t* after);

    const ServiceCalls system = serviceCalls;
    const ShadowFiles& files;
    EndedProcesses& ended;
    ChangeListener& listener;
    std::map<std::wstring, Service, LessIgnoringCase> services;
    OwnHandles<SC_HANDLE, Handle> handles;
    OwnHandles<SC_LOCK, int> locks;
};
