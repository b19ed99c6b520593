#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>

/// Benchmarks of works that need something made before each, which isn't timed, are registered with
/// UseManualTime() and go through all their iterations here. `items` are what the work handles;
/// works of different sizes are compared by the time for each.
template <class Prepare, class Work>
void timeEach(benchmark::State& state, int64_t items, Prepare prepare, Work work) {
    for (auto _ : state) {
        prepare();
        const auto begin = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(time.count());
    }
    state.SetItemsProcessed(state.iterations() * items);
}
