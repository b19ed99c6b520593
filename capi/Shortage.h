#pragma once

#include <temz/temz.h>

#include <new>

/// Notices, as long as it lives, that memory runs out anywhere in the library. In some places the
/// engine does without, or takes that for a failure of an action: what is to be relied on mustn't
/// be made so. There is one at a time, behind the gate.
class Shortage {
public:
    Shortage() : before(std::set_new_handler(&note)) { seen = false; }
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;
    ~Shortage() { std::set_new_handler(before); }

    /// What `body` answers if memory was enough for it.
    template <class Body>
    temz_status statusOf(const Body& body) const {
        try {
            const temz_status status = body();
            return seen ? temz_status{TEMZ_NO_MEMORY} : status;
        } catch (...) {
            if (seen)
                return TEMZ_NO_MEMORY;
            throw;
        }
    }

private:
    [[noreturn]] static void note() {
        seen = true;
        throw std::bad_alloc();
    }

    static inline bool seen = false;
    const std::new_handler before;
};
