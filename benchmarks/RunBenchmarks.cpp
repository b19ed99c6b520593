// Runs that change nothing on the machine: what the engine itself takes for each element.

#include <tinyxml.h>

#include <cstring>

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
ScriptFile fragments(int64_t elements) {
    const std::string fragment = "<Fragment>\n" +
                                 numbered("  <Caution Title='Please wait for step $'/>\n", 9) +
                                 "</Fragment>\n";
    return ScriptFile("", numbered(fragment, elements / 10));
}

void walk(benchmark::State& state) {
    timeRun(state, fragments(state.range(0)), state.range(0));
}
BENCHMARK(walk)->RangeMultiplier(10)->Range(100, 100'000)->UseRealTime();

/// What a run must see of the elements below one: how many there are, and of each the name and the
/// attributes.
size_t lookedAt(const TiXmlElement& above) {
    size_t seen = 0;
    for (const auto* child = above.FirstChildElement(); child; child = child->NextSiblingElement())
        ++seen;
    for (const auto* child = above.FirstChildElement(); child;
         child = child->NextSiblingElement()) {
        seen += child->ValueStr().size();
        for (const auto* part = child->FirstAttribute(); part; part = part->Next())
            seen += std::strlen(part->Name()) + std::strlen(part->Value());
        seen += lookedAt(*child);
    }
    return seen;
}

/// The same documents, where nothing but the parser's tree is looked at.
void tree(benchmark::State& state) {
    const ScriptFile script = fragments(state.range(0));
    TiXmlDocument document;
    if (!document.LoadFile(std::string(script.path().begin(), script.path().end()).c_str()))
        state.SkipWithError("The file can't be loaded.");
    for (auto _ : state)
        benchmark::DoNotOptimize(lookedAt(*document.RootElement()));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(tree)->RangeMultiplier(10)->Range(100, 100'000)->UseRealTime();

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
