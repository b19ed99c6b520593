// Measures the engine and its yardsticks inside one process; scripts/bench.sh compares them.

#include <benchmark/benchmark.h>

BENCHMARK_MAIN();
