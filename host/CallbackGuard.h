#pragma once

#include <temz/temz.h>

#include <new>

/// Keeps exceptions from leaving the callbacks that the library is given: it is called by way of C,
/// which they can't cross. Each callback does its work here. Behind the first exception no work is
/// done any more, and whatever is asked is answered with the end of the run.
class CallbackGuard {
public:
    template <class Work>
    void run(const Work& work) noexcept {
        if (hasCaught())
            return;
        try {
            work();
        } catch (const std::bad_alloc&) {
            caught = TEMZ_NO_MEMORY;
        } catch (...) {
            caught = TEMZ_INTERNAL;
        }
    }

    template <class Work>
    temz_answer answer(const Work& work) noexcept {
        static_assert(int{TEMZ_STOP} == int{TEMZ_ABORT},
                      "Of `update` and of `ask` it ends the run.");
        temz_answer given = TEMZ_STOP;
        run([&] { given = work(); });
        return given;
    }

    bool hasCaught() const { return caught != TEMZ_OK; }

    /// What has come of the library's function that was given the callbacks.
    temz_status statusOf(temz_status returned) const { return hasCaught() ? caught : returned; }

private:
    temz_status caught = TEMZ_OK;
};
