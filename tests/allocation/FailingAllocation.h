#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// For the life of the object, the `failing` allocations after the next `succeeding` ones fail.
class FailingAllocation {
public:
    explicit FailingAllocation(size_t succeeding = 0, size_t failing = SIZE_MAX);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    /// Whether an allocation has failed yet.
    bool hasFailed() const;
};

/// For the life of the object, a test's own allocations neither fail nor count among those that do.
class SparedAllocations {
public:
    SparedAllocations();
    SparedAllocations(const SparedAllocations&) = delete;
    SparedAllocations& operator=(const SparedAllocations&) = delete;
    ~SparedAllocations();
};

/// What stands behind each block, to notice who writes beyond its end, and isn't counted with it.
inline constexpr size_t guardSize = 8;

/// Allocations that have not been released, and their bytes.
size_t liveAllocations();
size_t liveBytes();

/// The most bytes that have been allocated at once in the life of the object, beyond those at its
/// start.
class PeakWatch {
public:
    PeakWatch();

    size_t bytes() const;

private:
    const size_t start;
};

struct AllocationCount {
    size_t allocations;
    size_t bytes;
};

/// All that has been allocated since the program's start, released or not.
AllocationCount allocationsSoFar();

/// What every byte of a block holds when it is given out.
inline constexpr unsigned char freshByte = 0xA5;

/// Sees, for the life of the object, in which order some blocks are released.
class ReleaseWatch {
public:
    struct Block {
        const void* memory;
        std::string name;
    };

    explicit ReleaseWatch(std::vector<Block> blocks);
    ReleaseWatch(const ReleaseWatch&) = delete;
    ReleaseWatch& operator=(const ReleaseWatch&) = delete;
    ~ReleaseWatch();

    /// The names of the blocks that have been released so far, in that order.
    std::vector<std::string> released() const;

    /// For the release of every block.
    void note(const void* memory);

private:
    std::vector<Block> blocks;  // those that have been released first
    size_t count = 0;           // of those
};
