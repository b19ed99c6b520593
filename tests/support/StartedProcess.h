#pragma once

#include "support/FakeCall.h"
#include "support/Requirements.h"
#include "system/ShellCalls.h"

/// Holds on to the process that the system's shell really starts while the object lives, and ends
/// it then if it still runs. Only in Wine, since Windows asks its user before such a start.
class StartedProcess {
public:
    StartedProcess() { EXPECT_TRUE(runsUnderWine()); }
    StartedProcess(const StartedProcess&) = delete;
    StartedProcess& operator=(const StartedProcess&) = delete;
    ~StartedProcess() {
        TerminateProcess(process, 0);
        CloseHandle(process);
    }

    bool isRunning() const { return WaitForSingleObject(process, 0) == WAIT_TIMEOUT; }

    DWORD exitCode() const {
        DWORD code = STILL_ACTIVE;
        GetExitCodeProcess(process, &code);
        return code;
    }

private:
    HANDLE process = nullptr;
    const FakeCall<shellCalls, &ShellCalls::ShellExecuteExW> start{[this](SHELLEXECUTEINFOW* info) {
        const BOOL started = start.real(info);
        DuplicateHandle(GetCurrentProcess(), info->hProcess, GetCurrentProcess(), &process, 0,
                        FALSE, DUPLICATE_SAME_ACCESS);
        return started;
    }};
};
