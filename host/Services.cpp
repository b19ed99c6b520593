#include "Services.h"

#include <memory>
#include <vector>

namespace {

struct ServiceCloser {
    void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
};
using ServicePtr = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, ServiceCloser>;

}  // namespace

std::wstring runningDependantsOf(const std::wstring& service) {
    const ServicePtr manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
    const ServicePtr opened(
        manager ? OpenServiceW(manager.get(), service.c_str(), SERVICE_ENUMERATE_DEPENDENTS)
                : nullptr);
    if (!opened)
        return {};
    DWORD size = 0;
    DWORD count = 0;
    dependantCalls.EnumDependentServicesW(opened.get(), SERVICE_ACTIVE, nullptr, 0, &size, &count);
    std::vector<BYTE> buffer(size);
    auto* services = reinterpret_cast<ENUM_SERVICE_STATUSW*>(buffer.data());
    if (size == 0 || !dependantCalls.EnumDependentServicesW(opened.get(), SERVICE_ACTIVE, services,
                                                            size, &size, &count))
        return {};
    std::wstring names;
    for (DWORD i = 0; i < count; ++i)
        names += (i == 0 ? L"" : L", ") + std::wstring(services[i].lpServiceName);
    return names;
}
