#include "plan/ShadowServices.h"

#include <cwchar>
#include <vector>

#include "plan/MachineService.h"
#include "system/PathText.h"

namespace {

struct NumberName {
    DWORD number;
    const wchar_t* name;
};

const NumberName stateNames[] = {
    {SERVICE_STOPPED, L"stopped"},
    {SERVICE_START_PENDING, L"starting"},
    {SERVICE_STOP_PENDING, L"stopping"},
    {SERVICE_RUNNING, L"running"},
    {SERVICE_CONTINUE_PENDING, L"continuing"},
    {SERVICE_PAUSE_PENDING, L"pausing"},
    {SERVICE_PAUSED, L"paused"},
};

const NumberName startTypeNames[] = {
    {SERVICE_BOOT_START, L"boot"},      {SERVICE_SYSTEM_START, L"system"},
    {SERVICE_AUTO_START, L"automatic"}, {SERVICE_DEMAND_START, L"on demand"},
    {SERVICE_DISABLED, L"disabled"},
};

template <size_t size>
const wchar_t* nameIn(const NumberName (&names)[size], DWORD number) {
    for (const NumberName& row : names)
        if (row.number == number)
            return row.name;
    return L"";
}

/// Whether a service that hasn't stopped is between two states.
bool isPending(DWORD state) {
    return state != SERVICE_RUNNING && state != SERVICE_PAUSED;
}

std::wstring withVariables(const std::wstring& text) {
    std::wstring expanded(ExpandEnvironmentStringsW(text.c_str(), nullptr, 0), L'\0');
    ExpandEnvironmentStringsW(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
    expanded.resize(std::wcslen(expanded.c_str()));
    return expanded;
}

}  // namespace

ShadowServices::~ShadowServices() {
    handles.visit([this](const Handle& handle) { system.CloseServiceHandle(handle.real); });
}

SC_HANDLE ShadowServices::realOf(SC_HANDLE handle) const {
    const Handle* const own = handles.find(handle);
    return own ? own->real : handle;
}

SC_HANDLE ShadowServices::answer(Call<&ServiceCalls::OpenSCManagerW>, const wchar_t* machine,
                                 const wchar_t* database, DWORD access) {
    const SC_HANDLE real = system.OpenSCManagerW(machine, database, access);
    return real ? handles.give({real, {}, access}) : nullptr;
}

SC_HANDLE ShadowServices::answer(Call<&ServiceCalls::OpenServiceW>, SC_HANDLE manager,
                                 const wchar_t* name, DWORD access) {
    const auto known = services.find(name);
    if (known != services.end() && known->second.isMarked && known->second.handles == 0 &&
        known->second.state == DWORD{SERVICE_STOPPED}) {
        SetLastError(ERROR_SERVICE_DOES_NOT_EXIST);
        return nullptr;
    }
    const SC_HANDLE real = system.OpenServiceW(realOf(manager), name, access);
    if (real == nullptr)
        return nullptr;
    if (known == services.end())
        services[name].isMarked = isMarkedForRemoval(name);
    ++services[name].handles;
    return handles.give({real, name, access});
}

BOOL ShadowServices::answer(Call<&ServiceCalls::CloseServiceHandle>, SC_HANDLE handle) {
    const BOOL closed = system.CloseServiceHandle(realOf(handle));
    if (const Handle* const own = handles.find(handle); own && !own->service.empty())
        --services[own->service].handles;
    handles.close(handle);
    return closed;
}

/// The state in which the run finds the service, with what else the system tells of it.
DWORD ShadowServices::stateOf(const Handle& handle, SERVICE_STATUS& status) const {
    status = {};
    system.QueryServiceStatus(handle.real, &status);
    const std::optional<DWORD>& own = services.at(handle.service).state;
    return own ? *own : status.dwCurrentState;
}

BOOL ShadowServices::answer(Call<&ServiceCalls::QueryServiceStatus>, SC_HANDLE service,
                            SERVICE_STATUS* status) {
    const BOOL answered = system.QueryServiceStatus(realOf(service), status);
    const Handle* const own = handles.find(service);
    if (answered && own)
        if (const std::optional<DWORD>& state = services.at(own->service).state)
            status->dwCurrentState = *state;
    return answered;
}

/// How the service is started, with its command line; nothing when the handle has no right to ask.
std::optional<DWORD> ShadowServices::startTypeOf(const Handle& handle,
                                                 std::wstring& program) const {
    DWORD size = 0;
    system.QueryServiceConfigW(handle.real, nullptr, 0, &size);
    std::vector<uint64_t> block(size / sizeof(uint64_t) + 1);
    auto* const config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(block.data());
    if (!system.QueryServiceConfigW(handle.real, config, size, &size))
        return services.at(handle.service).startType;
    if (config->lpBinaryPathName)
        program = config->lpBinaryPathName;
    return services.at(handle.service).startType.value_or(config->dwStartType);
}

BOOL ShadowServices::answer(Call<&ServiceCalls::QueryServiceConfigW>, SC_HANDLE service,
                            QUERY_SERVICE_CONFIGW* config, DWORD size, DWORD* needed) {
    const BOOL answered = system.QueryServiceConfigW(realOf(service), config, size, needed);
    const Handle* const own = handles.find(service);
    if (answered && own)
        config->dwStartType = services.at(own->service).startType.value_or(config->dwStartType);
    return answered;
}

void ShadowServices::tell(ChangeKind kind, const std::wstring& service, const wchar_t* before,
                          const wchar_t* after) {
    Change change{};
    change.kind = kind;
    change.object = service;
    change.before = before;
    change.after = after;
    listener.planned(change);
}

/// Whether the program of a command line is there: an unquoted one may end at any of its blanks.
DWORD ShadowServices::refusalOfProgram(const std::wstring& commandLine) const {
    const std::wstring line = withVariables(commandLine);
    const bool isQuoted = line.starts_with(L'"');
    const std::wstring text = isQuoted ? line.substr(1, line.find(L'"', 1) - 1) : line;
    // Other paths are the system's own, or looked for in its directories.
    if (text.size() < 3 || text[1] != L':')
        return ERROR_SUCCESS;
    DWORD error = ERROR_SUCCESS;
    for (size_t end = isQuoted ? text.size() : text.find(L' ');; end = text.find(L' ', end + 1)) {
        const std::wstring path = text.substr(0, end);
        for (const wchar_t* extension : {L"", L".exe"}) {
            const SeenFile file = files.look(fullPath((path + extension).c_str()));
            if (file.isThere() && !file.isDirectory())
                return ERROR_SUCCESS;
            error = file.isThere() ? DWORD{ERROR_ACCESS_DENIED} : file.error;
        }
        if (end >= text.size())
            return error;
    }
}

/// For a request that needs a handle to a service with a right.
DWORD ShadowServices::refusalOf(const Handle* handle, DWORD right) {
    if (handle == nullptr || handle->service.empty())
        return ERROR_INVALID_HANDLE;
    return handle->access & right ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

DWORD ShadowServices::start(const Handle* handle) {
    if (const DWORD error = refusalOf(handle, SERVICE_START))
        return error;
    Service& service = services.at(handle->service);
    SERVICE_STATUS status;
    const DWORD state = stateOf(*handle, status);
    if (state != SERVICE_STOPPED)
        return ERROR_SERVICE_ALREADY_RUNNING;
    if (service.isMarked)
        return ERROR_SERVICE_MARKED_FOR_DELETE;
    std::wstring program;
    if (startTypeOf(*handle, program) == DWORD{SERVICE_DISABLED})
        return ERROR_SERVICE_DISABLED;
    if (const DWORD error = refusalOfProgram(program))
        return error;
    service.state = SERVICE_RUNNING;
    tell(ChangeKind::serviceStarted, handle->service, nameIn(stateNames, state), L"running");
    return ERROR_SUCCESS;
}

BOOL ShadowServices::answer(Call<&ServiceCalls::StartServiceW>, SC_HANDLE service, DWORD /*count*/,
                            const wchar_t** /*arguments*/) {
    return answerOf(start(handles.find(service)));
}

DWORD ShadowServices::stop(const Handle* handle, SERVICE_STATUS& status) {
    if (const DWORD error = refusalOf(handle, SERVICE_STOP))
        return error;
    Service& service = services.at(handle->service);
    const DWORD state = stateOf(*handle, status);
    if (state == SERVICE_STOPPED)
        return ERROR_SERVICE_NOT_ACTIVE;
    if (isPending(state))
        return ERROR_SERVICE_CANNOT_ACCEPT_CTRL;
    if (!service.state && !(status.dwControlsAccepted & SERVICE_ACCEPT_STOP))
        return ERROR_INVALID_SERVICE_CONTROL;
    if (isNeededByRunning(handle->service))
        return ERROR_DEPENDENT_SERVICES_RUNNING;
    service.state = SERVICE_STOPPED;
    status.dwCurrentState = SERVICE_STOP_PENDING;
    if (const DWORD process = processOfService(handle->service))
        ended.add(process);
    tell(ChangeKind::serviceStopped, handle->service, nameIn(stateNames, state), L"stopped");
    return ERROR_SUCCESS;
}

BOOL ShadowServices::answer(Call<&ServiceCalls::ControlService>, SC_HANDLE service, DWORD control,
                            SERVICE_STATUS* status) {
    return answerOf(control == SERVICE_CONTROL_STOP ? stop(handles.find(service), *status)
                                                    : DWORD{ERROR_INVALID_SERVICE_CONTROL});
}

DWORD ShadowServices::remove(const Handle* handle) {
    if (const DWORD error = refusalOf(handle, DELETE))
        return error;
    Service& service = services.at(handle->service);
    if (service.isMarked)
        return ERROR_SERVICE_MARKED_FOR_DELETE;
    SERVICE_STATUS status;
    service.state = stateOf(*handle, status);
    service.isMarked = true;
    tell(ChangeKind::serviceRemoved, handle->service, nameIn(stateNames, *service.state), L"");
    return ERROR_SUCCESS;
}

BOOL ShadowServices::answer(Call<&ServiceCalls::DeleteService>, SC_HANDLE service) {
    return answerOf(remove(handles.find(service)));
}

DWORD ShadowServices::change(const Handle* handle, DWORD startType) {
    if (const DWORD error = refusalOf(handle, SERVICE_CHANGE_CONFIG))
        return error;
    Service& service = services.at(handle->service);
    if (service.isMarked)
        return ERROR_SERVICE_MARKED_FOR_DELETE;
    if (startType != SERVICE_NO_CHANGE && startType > SERVICE_DISABLED)
        return ERROR_INVALID_PARAMETER;
    std::wstring program;
    const std::optional<DWORD> before = startTypeOf(*handle, program);
    if (startType != SERVICE_NO_CHANGE)
        service.startType = startType;
    tell(ChangeKind::serviceChanged, handle->service,
         before ? nameIn(startTypeNames, *before) : L"", nameIn(startTypeNames, startType));
    return ERROR_SUCCESS;
}

BOOL ShadowServices::answer(Call<&ServiceCalls::ChangeServiceConfigW>, SC_HANDLE service,
                            DWORD /*type*/, DWORD startType, DWORD /*errorControl*/,
                            const wchar_t* /*program*/, const wchar_t* /*loadGroup*/,
                            DWORD* /*tag*/, const wchar_t* /*dependencies*/,
                            const wchar_t* /*account*/, const wchar_t* /*password*/,
                            const wchar_t* /*displayName*/) {
    return answerOf(change(handles.find(service), startType));
}

SC_LOCK ShadowServices::answer(Call<&ServiceCalls::LockServiceDatabase>, SC_HANDLE /*manager*/) {
    return locks.give(0);
}

BOOL ShadowServices::answer(Call<&ServiceCalls::UnlockServiceDatabase>, SC_LOCK lock) {
    return answerOf(locks.close(lock) ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_INVALID_SERVICE_LOCK});
}
