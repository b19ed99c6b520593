#include "FailingAllocation.h"

#include <cstdlib>
#include <new>

namespace {

size_t toSucceed = 0;
size_t toFail = 0;
bool failed = false;
size_t live = 0;
AllocationCount made = {};

bool mustFail() {
    if (toFail == 0)
        return false;
    if (toSucceed > 0) {
        --toSucceed;
        return false;
    }
    --toFail;
    return failed = true;
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

size_t liveAllocations() {
    return live;
}

AllocationCount allocationsSoFar() {
    return made;
}

void* operator new(size_t size) {
    void* memory = mustFail() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
        throw std::bad_alloc();
    ++live;
    ++made.allocations;
    made.bytes += size;
    return memory;
}

void* operator new[](size_t size) {
    return operator new(size);
}

void operator delete(void* memory) noexcept {
    live -= memory ? 1 : 0;
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
