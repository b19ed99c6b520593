#include "plan/MachineService.h"

#include "system/UniqueHandle.h"

namespace {

struct ServiceTraits {
    using Handle = SC_HANDLE;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { CloseServiceHandle(handle); }
};
using Service = UniqueHandle<ServiceTraits>;

Service open(const std::wstring& name, DWORD access) {
    const Service manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
    return Service(manager ? OpenServiceW(manager.get(), name.c_str(), access) : nullptr);
}

}  // namespace

DWORD processOfService(const std::wstring& name) {
    const Service service = open(name, SERVICE_QUERY_STATUS);
    SERVICE_STATUS_PROCESS status{};
    DWORD needed = 0;
    if (!service || !QueryServiceStatusEx(service.get(), SC_STATUS_PROCESS_INFO,
                                          reinterpret_cast<BYTE*>(&status), sizeof status, &needed))
        return 0;
    return status.dwServiceType == SERVICE_WIN32_OWN_PROCESS ? status.dwProcessId : 0;
}

bool isMarkedForRemoval(const std::wstring& name) {
    const std::wstring key = L"System\\CurrentControlSet\\Services\\" + name;
    DWORD flag = 0;
    DWORD size = sizeof flag;
    return RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"DeleteFlag", RRF_RT_REG_DWORD, nullptr,
                        &flag, &size) == ERROR_SUCCESS &&
           flag != 0;
}

bool isNeededByRunning(const std::wstring& name) {
    const Service service = open(name, SERVICE_ENUMERATE_DEPENDENTS);
    DWORD needed = 0;
    DWORD count = 0;
    return service &&
           !EnumDependentServicesW(service.get(), SERVICE_ACTIVE, nullptr, 0, &needed, &count) &&
           GetLastError() == ERROR_MORE_DATA;
}
