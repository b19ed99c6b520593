#pragma once

#include <utility>

/// Owns one system handle. Traits give the kind: `Handle`, its `invalid()` value, which a failed
/// call answers and which is never closed, and `close(Handle)`.
template <class Traits>
class UniqueHandle {
public:
    using Handle = typename Traits::Handle;

    UniqueHandle() = default;
    explicit UniqueHandle(Handle handle) : handle(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle(other.release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        reset(other.release());
        return *this;
    }
    ~UniqueHandle() { reset(); }

    explicit operator bool() const { return handle != Traits::invalid(); }
    Handle get() const { return handle; }
    Handle release() { return std::exchange(handle, Traits::invalid()); }

    /// Closes what is held, unless it is the very handle that comes in.
    void reset(Handle next = Traits::invalid()) {
        const Handle previous = std::exchange(handle, next);
        if (previous != Traits::invalid() && previous != next)
            Traits::close(previous);
    }

private:
    Handle handle = Traits::invalid();
};
