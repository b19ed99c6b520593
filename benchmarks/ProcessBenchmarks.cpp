// Whole processes, from their start to their end.

#include <windows.h>

#include <string>

#include "Payload.h"
#include "PayloadSizes.h"
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

/// Times one process, after `prepare`.
template <class Prepare>
void timeProcess(benchmark::State& state, const std::wstring& commandLine, Prepare prepare) {
    timeEach(state, 1, prepare, [&] {
        if (!runs(commandLine))
            state.SkipWithError("The process has failed.");
    });
}

void start(benchmark::State& state, const wchar_t* program) {
    timeProcess(state, program, [] {});
}
BENCHMARK_CAPTURE(start, host, L"temz_bench_host.exe")->Name("start/engine")->UseManualTime();
BENCHMARK_CAPTURE(start, bare, L"temz_bench_bare.exe")->Name("start/bare")->UseManualTime();

/// Times a process that installs, of a command line made of the payload.
template <class CommandLine>
void timeInstaller(benchmark::State& state, CommandLine commandLine) {
    const Payload payload(state.range(0), state.range(1));
    timeProcess(state, commandLine(payload), [&] { payload.clear(); });
    payload.clear();
}

void engine(benchmark::State& state) {
    timeInstaller(state, [](const Payload& payload) {
        return L"temz_bench_host.exe " + payload.name() + L".xml";
    });
}
BENCHMARK(engine)->Name("process/engine")->Apply(payloadSizes);

void bareCopy(benchmark::State& state) {
    timeInstaller(state, [](const Payload& payload) {
        return L"temz_bench_bare.exe " + payload.files().front().source + L" target\\file.bin";
    });
}
BENCHMARK(bareCopy)
    ->Name("process/bare")
    ->Args({1, 1 << 20})
    ->Args({1, 200 << 20})
    ->UseManualTime();

// The others, each with what scripts/bench.sh has made of the payload.

void xcopy(benchmark::State& state) {
    timeInstaller(state, [](const Payload& payload) {
        return L"xcopy.exe " + payload.name() + L" target /E /I /Y /Q";
    });
}
BENCHMARK(xcopy)->Name("process/xcopy")->Apply(payloadSizes);

void nsis(benchmark::State& state) {
    timeInstaller(state, [](const Payload& payload) {
        return payload.name() + L".exe /S /D=" + payload.target().wstring();
    });
}
BENCHMARK(nsis)->Name("process/nsis")->Apply(payloadSizes);

void msiexec(benchmark::State& state) {
    const Payload payload(state.range(0), state.range(1));
    const std::wstring package = payload.name() + L".msi /qn";
    timeProcess(state, L"msiexec.exe /i " + package, [&] { runs(L"msiexec.exe /x " + package); });
    runs(L"msiexec.exe /x " + package);
}
BENCHMARK(msiexec)->Name("process/msiexec")->Apply(payloadSizes);

}  // namespace
