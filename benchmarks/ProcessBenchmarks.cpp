// Whole processes, from their start to their end.

#include <windows.h>

#include <string>

#include "Timing.h"

namespace {

/// Runs a command line to its end. False when it can't be started or tells of a failure.
bool runs(std::wstring commandLine) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process))
        return false;
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 1;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return status == 0;
}

template <class Prepare>
void timeProcess(benchmark::State& state, const std::wstring& commandLine, Prepare prepare) {
    timeEach(state, 1, prepare, [&] {
        if (!runs(commandLine))
            state.SkipWithError("The process has failed.");
    });
}

void startHost(benchmark::State& state) {
    timeProcess(state, L"temz_bench_host.exe", [] {});
}
BENCHMARK(startHost)->Name("start/engine")->UseManualTime();

void startEmpty(benchmark::State& state) {
    timeProcess(state, L"temz_bench_bare.exe", [] {});
}
BENCHMARK(startEmpty)->Name("start/bare")->UseManualTime();

}  // namespace
