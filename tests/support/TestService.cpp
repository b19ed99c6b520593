#include "support/TestService.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "support/Requirements.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

namespace {

struct CloseService {
    void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, CloseService>;

Handle openManager() {
    return Handle(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
}

Handle openService(const wchar_t* name) {
    return Handle(OpenServiceW(openManager().get(), name, SERVICE_ALL_ACCESS));
}

}  // namespace

TestService::TestService(const Conduct& conduct) {
    EXPECT_TRUE(runsUnderWine());
    const Handle manager = openManager();
    // Another test program may have left one behind: the name is whosever installs it.
    static int made = 0;
    Handle service;
    do {
        serviceName =
            L"temz-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(made++);
        const std::wstring event = L"Global\\" + serviceName;
        const std::wstring commandLine = L"\"" + testProgramDirectory() + L"\\temz_service.exe\" " +
                                         event + L" " + std::to_wstring(conduct.startTakes) + L" " +
                                         std::to_wstring(conduct.stopTakes) + L" " + conduct.kind;
        service.reset(CreateServiceW(manager.get(), name(), nullptr, SERVICE_ALL_ACCESS,
                                     SERVICE_WIN32_OWN_PROCESS, conduct.startType,
                                     SERVICE_ERROR_IGNORE, commandLine.c_str(), nullptr, nullptr,
                                     nullptr, nullptr, nullptr));
        if (service)
            end = CreateEventW(nullptr, TRUE, FALSE, event.c_str());
    } while (!service && GetLastError() == ERROR_SERVICE_EXISTS);
    EXPECT_TRUE(service) << "no service manager: " << GetLastError();
}

TestService::~TestService() {
    SetEvent(end);
    if (const Handle service = openService(name())) {
        waitFor(SERVICE_STOPPED);
        DeleteService(service.get());
    }
    CloseHandle(end);
}

void TestService::start() const {
    EXPECT_TRUE(StartServiceW(openService(name()).get(), 0, nullptr));
    EXPECT_TRUE(waitFor(SERVICE_RUNNING));
}

uint32_t TestService::state() const {
    SERVICE_STATUS status{};
    status.dwCurrentState = gone;
    if (const Handle service = openService(name()))
        QueryServiceStatus(service.get(), &status);
    return status.dwCurrentState;
}

bool TestService::waitFor(uint32_t wanted) const {
    return waitUntil([&] { return state() == wanted; });
}

bool TestService::waitUntilSettled() const {
    return waitUntil([this] {
        const uint32_t now = state();
        return now == gone || now == SERVICE_STOPPED || now == SERVICE_RUNNING;
    });
}

uint32_t TestService::startType() const {
    alignas(QUERY_SERVICE_CONFIGW) unsigned char buffer[8192];
    auto* const config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer);
    DWORD size = 0;
    EXPECT_TRUE(QueryServiceConfigW(openService(name()).get(), config, sizeof buffer, &size));
    return config->dwStartType;
}
