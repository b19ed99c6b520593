#pragma once

#include <array>
#include <bit>
#include <cstddef>

/// The place of a virtual operation in its class's table, which a host calls through. A pointer to
/// a virtual member holds the operation's byte in the table plus one.
template <class Operation>
size_t slotOf(Operation operation) {
    return std::bit_cast<std::array<size_t, 2>>(operation)[0] / sizeof(void*);
}

/// The byte of an object at which a member of it begins.
template <class Object, class Member>
ptrdiff_t offsetIn(const Object& object, const Member& member) {
    return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&object);
}
