// Files come and go by a run of a script, and by the very calls that a run must make of the system
// for each of them, in their order.

#include <windows.h>

#include "BareLog.h"
#include "Payload.h"
#include "PayloadSizes.h"
#include "Script.h"
#include "Timing.h"

namespace {

bool isThere(const std::wstring& path) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(path.c_str(), &found);
    return search != INVALID_HANDLE_VALUE && FindClose(search);
}

/// A directory with what is missing around it, a look for what an earlier run may have left beside
/// the target, and the copy.
bool install(const Payload& payload) {
    for (const Payload::File& file : payload.files()) {
        if (!CreateDirectoryW(file.directory.c_str(), nullptr) &&
            GetLastError() == ERROR_PATH_NOT_FOUND)
            std::filesystem::create_directories(file.directory);
        if (isThere(file.staging) || !CopyFileW(file.source.c_str(), file.target.c_str(), FALSE))
            return false;
    }
    return true;
}

/// A line of the log, a look for the target, and its deletion.
bool uninstall(const Payload& payload) {
    for (const Payload::File& file : payload.files()) {
        writeBareLine("[WARNNING][2026-11-14 12:30:45] delete file " +
                      std::string(file.target.begin(), file.target.end()) + "\n");
        if (!isThere(file.target) || !DeleteFileW(file.target.c_str()))
            return false;
    }
    return true;
}

/// What the files are before a work that is timed: away, or there.
void prepare(RunMode mode, const Payload& payload) {
    if (mode == RUNMODE_INSTALL)
        std::filesystem::remove_all(payload.target());
    else
        install(payload);
}

/// Times a work on so many files of so many bytes, with a log or without its folder.
template <class Work>
void timeFiles(benchmark::State& state, RunMode mode, bool logged, Work work) {
    const Payload payload(state.range(0), state.range(1));
    const LogFolder log(logged);
    if (!log.isReady())
        state.SkipWithError("C:\\InstallLog is there already.");
    timeEach(
        state, state.range(0),
        [&] {
            log.empty();
            prepare(mode, payload);
        },
        [&] {
            if (!work(payload))
                state.SkipWithError("Not all is done.");
        });
    std::filesystem::remove_all(payload.target());
}

void byEngine(benchmark::State& state, RunMode mode, bool logged = false) {
    LoadedScript script(Payload(state.range(0), state.range(1)).script());
    timeFiles(state, mode, logged, [&](const Payload&) { return script.run(mode); });
}

void byCalls(benchmark::State& state, RunMode mode, bool logged = false) {
    timeFiles(state, mode, logged, mode == RUNMODE_UNINSTALL ? uninstall : install);
}

BENCHMARK_CAPTURE(byEngine, install, RUNMODE_INSTALL)->Name("install/engine")->Apply(payloadSizes);
BENCHMARK_CAPTURE(byCalls, install, RUNMODE_INSTALL)->Name("install/bare")->Apply(payloadSizes);
BENCHMARK_CAPTURE(byEngine, upgrade, RUNMODE_UPGRADE)->Name("upgrade/engine")->Apply(payloadSizes);
BENCHMARK_CAPTURE(byCalls, upgrade, RUNMODE_UPGRADE)->Name("upgrade/bare")->Apply(payloadSizes);
BENCHMARK_CAPTURE(byEngine, uninstall, RUNMODE_UNINSTALL)
    ->Name("uninstall/engine")
    ->Apply(payloadSizes);
BENCHMARK_CAPTURE(byCalls, uninstall, RUNMODE_UNINSTALL)
    ->Name("uninstall/bare")
    ->Apply(payloadSizes);
BENCHMARK_CAPTURE(byEngine, log, RUNMODE_UNINSTALL, true)
    ->Name("loggedUninstall/engine")
    ->Apply(payloadSizes);
BENCHMARK_CAPTURE(byCalls, log, RUNMODE_UNINSTALL, true)
    ->Name("loggedUninstall/bare")
    ->Apply(payloadSizes);

}  // namespace
