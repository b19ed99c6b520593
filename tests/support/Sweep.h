#pragma once

#include <cstddef>
#include <cstdlib>

/// Whether tests that go through many cases take all of them, and not a part:
/// scripts/soak.sh.
inline bool sweepsAreWhole() {
    return std::getenv("TEMZ_WHOLE_SWEEPS") != nullptr;
}

/// Of so many cases one is taken, the same each time.
inline size_t sweepStride(size_t stride) {
    return sweepsAreWhole() ? 1 : stride;
}
