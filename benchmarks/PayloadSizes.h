#pragma once

#include <benchmark/benchmark.h>

/// Many small files, and one large one, each also in a smaller measure.
inline void payloadSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Args({2000, 2048})->Args({1, 200 << 20})->Args({40, 2048})->Args({1, 1 << 20});
    benchmark->UseManualTime();
}
