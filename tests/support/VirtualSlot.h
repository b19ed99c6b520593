#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

inline constexpr size_t notVirtual = SIZE_MAX;

/// The place of an operation in its class's virtual table, counted from 0. This platform's
/// compilers begin a pointer to a virtual operation with its offset in the table, in bytes and with
/// the lowest bit set, and any other with the operation's address, which is even.
template <class Operation>
size_t virtualSlot(Operation operation) {
    uintptr_t words[2];
    static_assert(sizeof words == sizeof operation);
    std::memcpy(words, &operation, sizeof words);
    return words[0] % 2 == 1 ? words[0] / sizeof(void*) : notVirtual;
}
