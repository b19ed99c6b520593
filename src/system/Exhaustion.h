#pragma once

#include <new>
#include <string>

// Exhausted memory leaves the engine as std::bad_alloc, so that what can't be had is never taken
// for what isn't there. Two kinds of operations answer otherwise, by these.

/// What `make` makes, for an operation that answers exhausted memory by null.
template <class Make>
auto nullIfExhausted(const Make& make) -> decltype(make()) {
    try {
        return make();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/// The message of failures whose reason is exhausted memory.
inline constexpr wchar_t insufficientMemory[] = L"Insufficient memory.";

/// The same as a text to throw, which takes no memory: it was put aside while there was some.
class InsufficientMemory : public std::wstring {
public:
    InsufficientMemory();
    InsufficientMemory(const InsufficientMemory&) = delete;
    InsufficientMemory& operator=(const InsufficientMemory&) = delete;
    ~InsufficientMemory();
};
