#pragma once

#include <gmock/gmock.h>
#include <windows.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/FakeCall.h"
#include "support/Text.h"
#include "system/ClockCalls.h"
#include "system/ServiceCalls.h"

/// A service manager and a clock that do as a test says, in no time. What is opened, locked or
/// allocated has to be given back, once, and isn't used any more then.
class FakeServices {
public:
    static constexpr DWORD failedLook = 0;

    /// The service's state at each look; the last one stays.
    std::deque<DWORD> states{SERVICE_STOPPED};
    /// What they are from the next start or stop on that succeeds, where that is said.
    std::deque<DWORD> statesBehindRequest;
    /// What the service says to a stop, also to one that fails.
    DWORD stateAtStop = SERVICE_STOP_PENDING;
    /// The errors of a call at each time; it succeeds where there is none or 0.
    std::map<std::string, std::deque<DWORD>> errors;
    DWORD startType = SERVICE_DEMAND_START;
    /// Its command line, where it is told.
    std::wstring program;
    /// The tick count, and what a start or a stop adds to it.
    DWORD now = 0;
    DWORD requestTakes = 0;

    /// Called with the kind of what is about to be given back.
    std::function<void(const std::string& kind)> onGiveBack = [](const std::string&) {};

    /// All calls in their order, with their arguments.
    std::vector<std::string> calls;
    std::vector<DWORD> sleeps;

    /// What hasn't been given back.
    std::vector<std::string> held() const {
        std::vector<std::string> kinds;
        for (const auto& [handle, kind] : given)
            kinds.push_back(kind);
        return kinds;
    }

    size_t countCalls(const std::string& call) const {
        size_t count = 0;
        for (const std::string& made : calls)
            count += made.substr(0, made.find(' ')) == call;
        return count;
    }

private:
    static constexpr DWORD configSize = 512;
    static constexpr size_t patience = 10'000;  // sleeps

    /// Whether a call succeeds, in which case the last error says something else.
    template <class... Arguments>
    bool succeeds(const std::string& call, const Arguments&... arguments) {
        std::ostringstream line;
        line << call << std::hex << std::showbase;
        ((line << ' ' << arguments), ...);
        calls.push_back(line.str());

        DWORD error = 0;
        if (std::deque<DWORD>& planned = errors[call]; !planned.empty()) {
            error = planned.front();
            planned.pop_front();
        }
        SetLastError(error != 0 ? error : ERROR_SERVICE_DOES_NOT_EXIST);
        return error == 0;
    }

    template <class... Arguments>
    bool accepts(const std::string& request, const Arguments&... arguments) {
        now += requestTakes;
        const bool accepted = succeeds(request, arguments...);
        if (accepted && !statesBehindRequest.empty())
            states = statesBehindRequest;
        return accepted;
    }

    void* give(const std::string& kind) {
        void* const handle = reinterpret_cast<void*>(++lastHandle);
        given[handle] = kind;
        return handle;
    }

    void expectHeld(void* handle, const std::string& kind) const {
        const auto found = given.find(handle);
        EXPECT_EQ(found == given.end() ? "<nothing>" : found->second, kind);
    }

    template <class Handle>
    Handle open(bool opened, const std::string& kind) {
        return opened ? static_cast<Handle>(give(kind)) : nullptr;
    }

    uintptr_t lastHandle = 0x1000;
    std::map<void*, std::string> given;
    std::vector<uint64_t> memory;

    const FakeCall<serviceCalls, &ServiceCalls::OpenSCManagerW> openManager{
        [this](auto machine, auto database, DWORD access) {
            EXPECT_EQ(machine, nullptr);
            EXPECT_EQ(database, nullptr);
            return open<SC_HANDLE>(succeeds("OpenSCManager", access), "manager");
        }};
    const FakeCall<serviceCalls, &ServiceCalls::OpenServiceW> openService{
        [this](SC_HANDLE manager, auto name, DWORD access) {
            expectHeld(manager, "manager");
            return open<SC_HANDLE>(succeeds("OpenService", narrow(name), access), "service");
        }};
    const FakeCall<serviceCalls, &ServiceCalls::QueryServiceStatus> queryStatus{
        [this](SC_HANDLE service, SERVICE_STATUS* status) -> BOOL {
            expectHeld(service, "service");
            const DWORD state = states.front();
            if (states.size() > 1)
                states.pop_front();
            succeeds("QueryServiceStatus");
            if (state == failedLook)
                return FALSE;
            status->dwCurrentState = state;
            return TRUE;
        }};
    const FakeCall<serviceCalls, &ServiceCalls::StartServiceW> start{
        [this](SC_HANDLE service, DWORD count, auto arguments) {
            expectHeld(service, "service");
            EXPECT_EQ(count, 0u);
            EXPECT_EQ(arguments, nullptr);
            return accepts("StartService");
        }};
    const FakeCall<serviceCalls, &ServiceCalls::ControlService> control{
        [this](SC_HANDLE service, DWORD code, SERVICE_STATUS* status) {
            expectHeld(service, "service");
            status->dwCurrentState = stateAtStop;
            return accepts("ControlService", code);
        }};
    const FakeCall<serviceCalls, &ServiceCalls::DeleteService> remove{[this](SC_HANDLE service) {
        expectHeld(service, "service");
        return succeeds("DeleteService");
    }};
    const FakeCall<serviceCalls, &ServiceCalls::QueryServiceConfigW> queryConfig{
        [this](SC_HANDLE service, QUERY_SERVICE_CONFIGW* config, DWORD size, DWORD* needed) {
            expectHeld(service, "service");
            *needed = configSize;
            if (config == nullptr && errors["QueryServiceConfig"].empty())
                errors["QueryServiceConfig"] = {ERROR_INSUFFICIENT_BUFFER};
            const bool answered = succeeds("QueryServiceConfig", size);
            if (answered && config != nullptr)
                config->dwStartType = startType;
            if (answered && config != nullptr && !program.empty())
                config->lpBinaryPathName = program.data();
            return answered;
        }};
    const FakeCall<serviceCalls, &ServiceCalls::LockServiceDatabase> lock{
        [this](SC_HANDLE manager) {
            expectHeld(manager, "manager");
            return open<SC_LOCK>(succeeds("LockServiceDatabase"), "lock");
        }};
    const FakeCall<serviceCalls, &ServiceCalls::UnlockServiceDatabase> unlock{[this](SC_LOCK held) {
        expectHeld(held, "lock");
        onGiveBack("lock");
        given.erase(held);
        return succeeds("UnlockServiceDatabase");
    }};
    const FakeCall<serviceCalls, &ServiceCalls::ChangeServiceConfigW> change{
        [this](SC_HANDLE service, DWORD type, DWORD start, DWORD errorControl, auto... others) {
            expectHeld(service, "service");
            EXPECT_TRUE(((others == nullptr) && ...));
            return succeeds("ChangeServiceConfig", type, start, errorControl);
        }};
    const FakeCall<serviceCalls, &ServiceCalls::CloseServiceHandle> close{[this](SC_HANDLE handle) {
        const std::string kind = given.contains(handle) ? given[handle] : "<nothing>";
        onGiveBack(kind);
        given.erase(handle);
        return succeeds("CloseServiceHandle", kind);
    }};
    const FakeCall<serviceCalls, &ServiceCalls::LocalAlloc> allocate{
        [this](UINT flags, SIZE_T size) -> HLOCAL {
            if (!succeeds("LocalAlloc", flags, size))
                return nullptr;
            memory.assign(size / sizeof memory[0], 0);
            given[memory.data()] = "memory";
            return memory.data();
        }};
    const FakeCall<serviceCalls, &ServiceCalls::LocalFree> release{[this](HLOCAL freed) {
        expectHeld(freed, "memory");
        onGiveBack("memory");
        given.erase(freed);
        memory.assign(memory.size(), UINT64_MAX);
        succeeds("LocalFree");
        return HLOCAL{};
    }};
    const FakeCall<clockCalls, &ClockCalls::GetTickCount> tick{[this] {
        succeeds("GetTickCount");
        return now;
    }};
    const FakeCall<clockCalls, &ClockCalls::Sleep> sleep{[this](DWORD milliseconds) {
        succeeds("Sleep", std::to_string(milliseconds));
        sleeps.push_back(milliseconds);
        now += milliseconds;
        if (sleeps.size() > patience)
            throw std::runtime_error("the wait has no end");
    }};
};
