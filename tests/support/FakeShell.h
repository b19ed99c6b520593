#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "support/FakeCall.h"
#include "system/ProcessCalls.h"
#include "system/ShellCalls.h"

/// Takes the place of the system's shell, which then starts nothing, and of what is done with the
/// process that it gives.
class FakeShell {
public:
    /// A call, with the process and the milliseconds that it was given.
    using Step = std::tuple<std::string, HANDLE, DWORD>;

    static Step start() { return {"start", nullptr, 0}; }
    static Step wait(HANDLE process) { return {"wait", process, INFINITE}; }
    static Step close(HANDLE process) { return {"close", process, 0}; }

    BOOL accepts = TRUE;
    HANDLE process = reinterpret_cast<HANDLE>(0x1234);

    SHELLEXECUTEINFOW started{};  ///< as the last start brought it; the texts are no longer there
    std::wstring verb;
    std::wstring file;
    std::wstring parameters;
    std::vector<Step> steps;

private:
    // All of them succeed with a last error that misleads, or fail without one.
    const FakeCall<shellCalls, &ShellCalls::ShellExecuteExW> fakeStart{
        [this](SHELLEXECUTEINFOW* info) {
            started = *info;
            verb = info->lpVerb;
            file = info->lpFile;
            parameters = info->lpParameters ? info->lpParameters : L"<null>";
            steps.push_back(start());
            if (accepts)
                info->hProcess = process;
            SetLastError(accepts ? ERROR_ACCESS_DENIED : ERROR_SUCCESS);
            return accepts;
        }};
    const FakeCall<processCalls, &ProcessCalls::WaitForSingleObject> fakeWait{
        [this](HANDLE handle, DWORD limit) {
            steps.push_back({"wait", handle, limit});
            return WAIT_FAILED;
        }};
    const FakeCall<processCalls, &ProcessCalls::CloseHandle> fakeClose{[this](HANDLE handle) {
        steps.push_back({"close", handle, 0});
        return FALSE;
    }};
};
