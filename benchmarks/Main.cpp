// Measures the engine and its yardsticks; scripts/bench.sh compares them. "payload COUNT BYTES"
// only lays the files out that are installed.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string_view>

#include "Payload.h"

int main(int argc, char** argv) {
    if (argc == 4 && std::string_view(argv[1]) == "payload") {
        const Payload payload(std::atoll(argv[2]), std::atoll(argv[3]));
        return payload.files().empty() ? 1 : 0;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
