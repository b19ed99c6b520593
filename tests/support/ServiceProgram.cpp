// A service for tests. Its arguments: the event that ends it at once, whatever it is doing; how
// many milliseconds it takes to start and to stop; and "runs", or "fails" for one that stops
// instead of running, or "stays" for one that doesn't let itself be stopped. Should a test have
// left it behind, none of it lasts for more than a minute.

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace {

constexpr DWORD lifetime = 60'000;

DWORD startTakes;
DWORD stopTakes;
std::string_view conduct;

HANDLE ended;
HANDLE stopAsked;
SERVICE_STATUS_HANDLE service;

void report(DWORD state) {
    SERVICE_STATUS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    status.dwWaitHint = lifetime;
    if (state == SERVICE_RUNNING && conduct != "stays")
        status.dwControlsAccepted = SERVICE_ACCEPT_STOP;
    SetServiceStatus(service, &status);
}

/// False when the test has ended the service meanwhile.
bool stayPending(DWORD state, DWORD milliseconds) {
    report(state);
    return WaitForSingleObject(ended, std::min(milliseconds, lifetime)) == WAIT_TIMEOUT;
}

void waitUntilStopIsAsked() {
    const HANDLE events[] = {ended, stopAsked};
    WaitForMultipleObjects(2, events, FALSE, lifetime);
}

void WINAPI control(DWORD code) {
    // Whoever asked is to see that the service is on its way.
    if (code == SERVICE_CONTROL_STOP) {
        report(SERVICE_STOP_PENDING);
        SetEvent(stopAsked);
    }
}

void WINAPI serve(DWORD, wchar_t**) {
    service = RegisterServiceCtrlHandlerW(L"", &control);
    if (stayPending(SERVICE_START_PENDING, startTakes) && conduct != "fails") {
        report(SERVICE_RUNNING);
        waitUntilStopIsAsked();
        stayPending(SERVICE_STOP_PENDING, stopTakes);
    }
    report(SERVICE_STOPPED);
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 5)
        return EXIT_FAILURE;
    ended = OpenEventA(SYNCHRONIZE, FALSE, arguments[1]);
    stopAsked = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    startTakes = std::strtoul(arguments[2], nullptr, 10);
    stopTakes = std::strtoul(arguments[3], nullptr, 10);
    conduct = arguments[4];

    wchar_t name[] = L"";
    const SERVICE_TABLE_ENTRYW table[] = {{name, &serve}, {nullptr, nullptr}};
    StartServiceCtrlDispatcherW(table);
}
