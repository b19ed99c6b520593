// A line of the log, beside the calls that it takes to write one that is ready.

#include "BareLog.h"
#include "Timing.h"
#include "logging/Log.h"

namespace {

template <class Work>
void timeLine(benchmark::State& state, bool present, Work work) {
    const LogFolder folder(present);
    if (!folder.isReady())
        state.SkipWithError("C:\\InstallLog is there already.");
    for (auto _ : state)
        work();
    state.SetItemsProcessed(state.iterations());
}

void logByEngine(benchmark::State& state, bool present) {
    const std::wstring path = L"C:\\Program Files\\Example\\program.dll";
    timeLine(state, present, [&] { writeLog(WARNNING, "delete file ", path); });
}
BENCHMARK_CAPTURE(logByEngine, present, true)->Name("log/engine")->UseRealTime();
BENCHMARK_CAPTURE(logByEngine, absent, false)->Name("absentLog/engine")->UseRealTime();

void logByBareCalls(benchmark::State& state, bool present) {
    const std::string line =
        "[WARNNING][2026-11-14 12:30:45] delete file C:\\Program Files\\Example\\program.dll\n";
    timeLine(state, present, [&] { writeBareLine(line); });
}
BENCHMARK_CAPTURE(logByBareCalls, present, true)->Name("log/bare")->UseRealTime();
BENCHMARK_CAPTURE(logByBareCalls, absent, false)->Name("absentLog/bare")->UseRealTime();

}  // namespace
