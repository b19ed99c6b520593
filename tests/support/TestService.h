#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

/// A service that is installed for the life of the object, whatever becomes of it meanwhile. Only
/// in Wine, since it stands among the services of the machine.
class TestService {
public:
    static constexpr uint32_t forEver = INFINITE;
    /// The state of a service that isn't there any more; all others are the system's.
    static constexpr uint32_t gone = 0;

    struct Conduct {
        uint32_t startTakes = 0;  ///< milliseconds
        uint32_t stopTakes = 0;
        /// "runs", or "fails": it stops instead of running, or "stays": it can't be stopped
        std::wstring kind = L"runs";
        uint32_t startType = SERVICE_DEMAND_START;
    };

    TestService() : TestService(Conduct{}) {}
    explicit TestService(const Conduct& conduct);
    TestService(const TestService&) = delete;
    TestService& operator=(const TestService&) = delete;
    /// Ends the service, and removes it if nobody else has.
    ~TestService();

    const wchar_t* name() const { return serviceName.c_str(); }

    /// Starts it and waits until it runs.
    void start() const;
    uint32_t state() const;
    /// Waits, at most for some seconds, until it is in this state.
    bool waitFor(uint32_t wanted) const;
    /// Waits as long until it isn't on its way to another state.
    bool waitUntilSettled() const;
    /// One of the system's SERVICE_..._START.
    uint32_t startType() const;

private:
    std::wstring serviceName;
    HANDLE end = nullptr;
};
