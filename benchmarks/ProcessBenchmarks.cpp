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

/// Times a process that installs, whose command line is made of the payload.
void install(benchmark::State& state, std::wstring (*commandLine)(const Payload&)) {
    const Payload payload(state.range(0), state.range(1));
    timeProcess(state, commandLine(payload), [&] { payload.clear(); });
    payload.clear();
}

std::wstring engine(const Payload& payload) {
    return L"temz_bench_host.exe " + payload.name() + L".xml";
}
BENCHMARK_CAPTURE(install, engine, &engine)->Name("process/engine")->Apply(payloadSizes);

std::wstring bare(const Payload& payload) {
    return L"temz_bench_bare.exe " + payload.files().front().source + L" target\\file.bin";
}
BENCHMARK_CAPTURE(install, bare, &bare)
    ->Name("process/bare")
    ->Args({1, 1 << 20})
    ->Args({1, 200 << 20})
    ->UseManualTime();

std::wstring xcopy(const Payload& payload) {
    return L"xcopy.exe " + payload.name() + L" target /E /I /Y /Q";
}
BENCHMARK_CAPTURE(install, xcopy, &xcopy)->Name("process/xcopy")->Apply(payloadSizes);

// Both are made of the payload by benchmarks/bench.py.
std::wstring nsis(const Payload& payload) {
    return payload.name() + L".exe /S /D=" + payload.target().wstring();
}
BENCHMARK_CAPTURE(install, nsis, &nsis)->Name("process/nsis")->Apply(payloadSizes);

void msiexec(benchmark::State& state) {
    const std::wstring package = Payload(state.range(0), state.range(1)).name() + L".msi /qn";
    const auto remove = [&] { runs(L"msiexec.exe /x " + package); };
    timeProcess(state, L"msiexec.exe /i " + package, remove);
    remove();
}
BENCHMARK(msiexec)->Name("process/msiexec")->Apply(payloadSizes);

}  // namespace
