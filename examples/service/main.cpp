// The service of the example product: it writes one greeting into a folder beside itself and waits
// until it is stopped. `greeter-service.exe register` makes it known to the service manager;
// started otherwise, by the service manager, it is the service.

#include <windows.h>

#include <cwchar>
#include <string>

namespace {

wchar_t serviceName[] = L"TemzExampleGreeter";

SERVICE_STATUS_HANDLE statusHandle;
HANDLE stopRequested;

std::wstring programPath() {
    wchar_t path[MAX_PATH];
    return {path, GetModuleFileNameW(nullptr, path, MAX_PATH)};
}

void report(DWORD state) {
    SERVICE_STATUS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    status.dwControlsAccepted = state == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP : 0;
    SetServiceStatus(statusHandle, &status);
}

DWORD WINAPI handleControl(DWORD control, DWORD, void*, void*) {
    if (control == SERVICE_CONTROL_STOP) {
        report(SERVICE_STOP_PENDING);
        SetEvent(stopRequested);
    }
    return NO_ERROR;
}

void greet() {
    const std::wstring program = programPath();
    const std::wstring folder = program.substr(0, program.rfind(L'\\')) + L"\\cache";
    CreateDirectoryW(folder.c_str(), nullptr);
    const HANDLE file = CreateFileW((folder + L"\\greeting.txt").c_str(), GENERIC_WRITE, 0, nullptr,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    constexpr char greeting[] = "Hello from the service.\n";
    DWORD written = 0;
    WriteFile(file, greeting, sizeof greeting - 1, &written, nullptr);
    CloseHandle(file);
}

void WINAPI serve(DWORD, wchar_t**) {
    stopRequested = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    statusHandle = RegisterServiceCtrlHandlerExW(serviceName, handleControl, nullptr);
    greet();
    report(SERVICE_RUNNING);
    WaitForSingleObject(stopRequested, INFINITE);
    report(SERVICE_STOPPED);
}

int registerService() {
    const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CREATE_SERVICE);
    if (!manager)
        return 1;
    const std::wstring command = L'"' + programPath() + L'"';
    const SC_HANDLE service =
        CreateServiceW(manager, serviceName, L"Greeter of Example Works", SERVICE_ALL_ACCESS,
                       SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                       command.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
    if (service)
        CloseServiceHandle(service);
    CloseServiceHandle(manager);
    return service ? 0 : 1;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc == 2 && std::wcscmp(argv[1], L"register") == 0)
        return registerService();
    const SERVICE_TABLE_ENTRYW services[] = {{serviceName, serve}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherW(services) ? 0 : 1;
}
