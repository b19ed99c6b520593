// Runs that change nothing on the machine: what the engine itself takes for each element.

#include "Script.h"
#include "Timing.h"

namespace {

void timeRun(benchmark::State& state, const ScriptFile& file, int64_t elements) {
    LoadedScript script(file.path());
    for (auto _ : state)
        if (!script.run())
            state.SkipWithError("The run has failed.");
    state.SetItemsProcessed(state.iterations() * elements);
}

/// Fragments of nine elements that only announce themselves: with each fragment, ten elements.
void walk(benchmark::State& state) {
    const int64_t elements = state.range(0);
    const std::string fragment = "<Fragment>\n" +
                                 numbered("  <Caution Title='Please wait for step $'/>\n", 9) +
                                 "</Fragment>\n";
    timeRun(state, ScriptFile("", numbered(fragment, elements / 10)), elements);
}
BENCHMARK(walk)->RangeMultiplier(10)->Range(100, 100'000)->UseRealTime();

/// So many conditions over so many variables, whose names are all of one length.
void conditions(benchmark::State& state) {
    const int64_t count = state.range(0);
    const int64_t variables = state.range(1);
    const auto number = [=](int64_t i) { return std::to_string(100'000 + i % variables); };
    std::string elements, declarations;
    for (int64_t i = 0; i < count; ++i)
        elements += "<Condition Expression='Variable" + number(i) + " E 1'/>\n";
    for (int64_t i = 0; i < variables; ++i)
        declarations += "<Variable Id='Variable" + number(i) + "' Type='int' Value='1'/>\n";
    timeRun(state, ScriptFile("", "<Fragment>" + elements + "</Fragment>", declarations), count);
}
BENCHMARK(conditions)
    ->Args({500, 5})
    ->Args({500, 50})
    ->Args({50'000, 50})
    ->Args({50'000, 5000})
    ->UseRealTime();

}  // namespace
