#include "hostile/GuardedAllocation.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr uint64_t liveMark = 0x6C69766562'6C6F63;
constexpr uint64_t releasedMark = 0x676F6E65'62'6C6F63;
constexpr unsigned char freshByte = 0xA5;
constexpr unsigned char releasedByte = 0xEE;
constexpr unsigned char guardByte = 0xFD;
constexpr size_t guardSize = 16;

/// In front of each block. The mark stands beside the block and is its guard there.
struct Head {
    size_t size;
    uint64_t mark;
};
static_assert(sizeof(Head) == guardSize, "blocks stay aligned");

constexpr size_t keptCount = 2048;
constexpr size_t keptSize = 64 * 1024;  // larger ones are released at once

SRWLOCK lock = SRWLOCK_INIT;
Head* kept[keptCount];
size_t next = 0;
size_t live = 0;
GivenOut givenOut = {};

class Locked {
public:
    Locked() { AcquireSRWLockExclusive(&lock); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { ReleaseSRWLockExclusive(&lock); }
};

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "Heap: %s\n", what);
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), damagedHeapStatus);
    std::abort();
}

unsigned char* contentOf(Head* head) {
    return reinterpret_cast<unsigned char*>(head + 1);
}

bool holdsOnly(const unsigned char* bytes, size_t count, unsigned char byte) {
    return std::all_of(bytes, bytes + count, [byte](unsigned char other) { return other == byte; });
}

void checkGuard(Head* head) {
    if (!holdsOnly(contentOf(head) + head->size, guardSize, guardByte))
        fail("something was written behind a block");
}

void checkReleased(Head* head) {
    if (head->mark != releasedMark)
        fail("something was written in front of a released block");
    checkGuard(head);
    if (!holdsOnly(contentOf(head), head->size, releasedByte))
        fail("something was written into a released block");
}

void* allocate(size_t size) {
    auto* const head = static_cast<Head*>(std::malloc(sizeof(Head) + size + guardSize));
    if (head == nullptr)
        return nullptr;
    *head = {size, liveMark};
    std::memset(contentOf(head), freshByte, size);
    std::memset(contentOf(head) + size, guardByte, guardSize);
    const Locked locked;
    ++live;
    ++givenOut.blocks;
    givenOut.bytes += size;
    return contentOf(head);
}

void release(void* memory) {
    if (memory == nullptr)
        return;
    Head* head = static_cast<Head*>(memory) - 1;
    const Locked locked;
    if (head->mark == releasedMark)
        fail("a block was released twice");
    if (head->mark != liveMark)
        fail("what was released is no block, or something was written in front of it");
    checkGuard(head);
    --live;
    head->mark = releasedMark;
    std::memset(memory, releasedByte, head->size);
    if (head->size <= keptSize) {
        std::swap(kept[next], head);
        next = (next + 1) % keptCount;
    }
    if (head)
        checkReleased(head);
    std::free(head);
}

}  // namespace

size_t liveBlocks() {
    return live;
}

GivenOut givenOutSoFar() {
    return givenOut;
}

void checkReleasedBlocks() {
    const Locked locked;
    for (Head* head : kept)
        if (head)
            checkReleased(head);
}

void* operator new(size_t size) {
    if (void* memory = allocate(size))
        return memory;
    throw std::bad_alloc();
}
void* operator new[](size_t size) {
    return operator new(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, size_t) noexcept {
    release(memory);
}
