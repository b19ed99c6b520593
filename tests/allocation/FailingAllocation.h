#pragma once

#include <cstddef>
#include <cstdint>

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

/// Allocations that have not been released.
size_t liveAllocations();

struct AllocationCount {
    size_t allocations;
    size_t bytes;
};

/// All that has been allocated since the program's start, released or not.
AllocationCount allocationsSoFar();
