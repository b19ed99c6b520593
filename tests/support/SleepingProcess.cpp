#include "support/SleepingProcess.h"

#include <windows.h>

#include <stdexcept>

#include "support/TestFolder.h"

namespace {

constexpr DWORD patience = 10000;  // milliseconds

}  // namespace

SleepingProcess::SleepingProcess(const std::wstring& path) {
    CopyFileW((testProgramDirectory() + L"\\temz_sleeper.exe").c_str(), path.c_str(), TRUE);
    const std::wstring eventName = L"temz-sleeper-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE running = CreateEventW(nullptr, TRUE, FALSE, eventName.c_str());
    std::wstring commandLine = L"sleeper " + eventName;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    CreateProcessW(path.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                   &startup, &started);
    process = started.hProcess;
    processId = started.dwProcessId;
    // A process lists its executable only when it has been loaded.
    const bool runs = process && WaitForSingleObject(running, patience) == WAIT_OBJECT_0;
    CloseHandle(started.hThread);
    CloseHandle(running);
    if (!runs)
        throw std::runtime_error("the sleeping program can't be started");
}

SleepingProcess::~SleepingProcess() {
    TerminateProcess(process, 1);
    WaitForSingleObject(process, patience);
    CloseHandle(process);
}

bool SleepingProcess::isRunning() const {
    return WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
}

uint32_t SleepingProcess::exitCode() const {
    DWORD code = STILL_ACTIVE;
    WaitForSingleObject(process, patience);
    GetExitCodeProcess(process, &code);
    return code;
}
