// What it takes to load a script, beside what its parser takes to load the file.

#include <tinyxml.h>

#include <memory>
#include <optional>

#include "Script.h"
#include "Timing.h"

namespace {

/// Components of nine files each: with each component, ten elements.
std::string components(int64_t elements) {
    const std::string files = numbered(
        "    <File Name='program$.dll' Source='payload\\program$.dll' SupportDelayInstall='no'/>\n",
        9);
    return numbered("  <Component Id='Component$'>\n" + files + "  </Component>\n", elements / 10);
}

void loadByEngine(benchmark::State& state) {
    const ScriptFile script(components(state.range(0)), "");
    CContext context;
    timeEach(
        state, state.range(0), [&] { context.unload(); },
        [&] {
            if (!context.load(script.path().c_str()))
                state.SkipWithError("The script can't be loaded.");
        });
}
BENCHMARK(loadByEngine)
    ->Name("load/engine")
    ->RangeMultiplier(10)
    ->Range(100, 100'000)
    ->UseManualTime();

void loadByParser(benchmark::State& state) {
    const ScriptFile script(components(state.range(0)), "");
    const std::string path(script.path().begin(), script.path().end());
    std::optional<TiXmlDocument> document;
    timeEach(
        state, state.range(0), [&] { document.emplace(); },
        [&] {
            if (!document->LoadFile(path.c_str()))
                state.SkipWithError("The file can't be loaded.");
        });
}
BENCHMARK(loadByParser)
    ->Name("load/parser")
    ->RangeMultiplier(10)
    ->Range(100, 100'000)
    ->UseManualTime();

}  // namespace
