#pragma once

#include <cstddef>
#include <cstdint>

// In a program that is linked with this, each block of memory stands between guards, is filled when
// it is given out and again when it is released, and is kept for a while before it is given out
// anew. What is written beyond a block or after its release, and what is released twice or never
// was a block, ends the program with the status of a damaged heap.

inline constexpr uint32_t damagedHeapStatus = 0xC0000374;

/// Blocks that have not been released.
size_t liveBlocks();

/// What has been given out since the program's start, released or not.
struct GivenOut {
    size_t blocks;
    size_t bytes;
};
GivenOut givenOutSoFar();

/// Looks at all blocks that are kept after their release.
void checkReleasedBlocks();
