#include "FailingAllocation.h"

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace {

size_t toSucceed = 0;
size_t toFail = 0;
bool failed = false;
bool spared = false;
size_t live = 0;
size_t liveSize = 0;
size_t largestSize = 0;
AllocationCount made = {};
ReleaseWatch* watch = nullptr;

bool mustFail() {
    if (toFail == 0 || spared)
        return false;
    if (toSucceed > 0) {
        --toSucceed;
        return false;
    }
    --toFail;
    return failed = true;
}

/// Stands behind each block. Who writes beyond a block's end ends the program when the block is
/// released.
constexpr unsigned char guard[guardSize] = {0xFD, 0xFC, 0xFB, 0xFA, 0xFD, 0xFC, 0xFB, 0xFA};

size_t sizeOf(void* memory) {
    return _msize(memory) - sizeof guard;
}

void checkGuard(const void* memory, size_t size) {
    if (std::memcmp(static_cast<const char*>(memory) + size, guard, sizeof guard) == 0)
        return;
    std::fprintf(stderr, "A block of %u bytes was written to beyond its end.\n",
                 static_cast<unsigned>(size));
    std::abort();
}

}  // namespace

FailingAllocation::FailingAllocation(size_t succeeding, size_t failing) {
    failed = false;
    toSucceed = succeeding;
    toFail = failing;
}

FailingAllocation::~FailingAllocation() {
    toFail = 0;
}

bool FailingAllocation::hasFailed() const {
    return failed;
}

SparedAllocations::SparedAllocations() {
    spared = true;
}

SparedAllocations::~SparedAllocations() {
    spared = false;
}

size_t liveAllocations() {
    return live;
}

size_t liveBytes() {
    return liveSize;
}

PeakWatch::PeakWatch() : start(liveSize) {
    largestSize = liveSize;
}

size_t PeakWatch::bytes() const {
    return largestSize - start;
}

AllocationCount allocationsSoFar() {
    return made;
}

ReleaseWatch::ReleaseWatch(std::vector<Block> blocks) : blocks(std::move(blocks)) {
    watch = this;
}

ReleaseWatch::~ReleaseWatch() {
    watch = nullptr;
}

std::vector<std::string> ReleaseWatch::released() const {
    std::vector<std::string> names;
    for (size_t i = 0; i < count; ++i)
        names.push_back(blocks[i].name);
    return names;
}

// A block counts once: its memory may be given out again.
void ReleaseWatch::note(const void* memory) {
    const auto waiting = blocks.begin() + static_cast<ptrdiff_t>(count);
    const auto found = std::find_if(
        waiting, blocks.end(), [memory](const Block& block) { return block.memory == memory; });
    if (found == blocks.end())
        return;
    std::swap(*waiting, *found);
    ++count;
}

void* operator new(size_t size) {
    void* memory = mustFail() ? nullptr : std::malloc(size + sizeof guard);
    if (memory == nullptr)
        throw std::bad_alloc();
    std::memset(memory, freshByte, size);
    std::memcpy(static_cast<char*>(memory) + size, guard, sizeof guard);
    ++live;
    liveSize += size;
    largestSize = std::max(largestSize, liveSize);
    ++made.allocations;
    made.bytes += size;
    return memory;
}

void* operator new[](size_t size) {
    return operator new(size);
}

void operator delete(void* memory) noexcept {
    if (memory == nullptr)
        return;
    const size_t size = sizeOf(memory);
    checkGuard(memory, size);
    --live;
    liveSize -= size;
    if (watch)
        watch->note(memory);
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    operator delete(memory);
}
void operator delete(void* memory, size_t) noexcept {
    operator delete(memory);
}
void operator delete[](void* memory, size_t) noexcept {
    operator delete(memory);
}
