#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

inline constexpr size_t notVirtual = SIZE_MAX;

/// The place of an operation in its class's virtual table, through which hosts call it. A pointer
/// to a virtual operation begins with its byte in the table plus one, and a pointer to any other
/// with the operation's address, which is even.
template <class Operation>
size_t slotOf(Operation operation) {
    const size_t place = std::bit_cast<std::array<size_t, 2>>(operation)[0];
    return place % 2 == 1 ? place / sizeof(void*) : notVirtual;
}

/// A virtual operation behind all those of `Base`: its slot tells how many there are.
template <class Base>
struct Extended : Base {
    virtual void next() = 0;
};

/// The byte of an object at which a member of it begins.
template <class Object, class Member>
ptrdiff_t offsetIn(const Object& object, const Member& member) {
    return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&object);
}

/// The member, also a private one, that begins at a byte of an object.
template <class Member, class Object>
Member& memberAt(Object& object, size_t place) {
    return *reinterpret_cast<Member*>(reinterpret_cast<char*>(&object) + place);
}
