#pragma once

#include <windows.h>

#include <temz/temz.h>

#include <new>

/// Who may use the engine now. What the engine keeps for the process is shared by all contexts, so
/// calls pass here one at a time; while a run goes on, its own thread alone passes, from inside a
/// callback, and others are turned away rather than kept waiting.
class Gate {
public:
    /// What a call is for: asking and setting is fine inside a callback; loading, running and
    /// releasing would pull the script from under the run.
    enum class Use { asking, changing };

    /// The status of `body`, when the call is due. No exception leaves a body.
    template <class Body>
    temz_status pass(Use use, Body body) {
        {
            const Lock lock(section);
            const temz_status status = due(use);
            if (status != TEMZ_OK)
                return status;
            if (runner == nobody)
                return withoutExceptions(body);
        }
        // Inside a run nobody else gets this far. What the body does may be traced, and the tracer
        // comes here in its turn: the lock must be free then.
        return withoutExceptions(body);
    }

    /// The same in two steps for a run, during which the gate stands open for its callbacks:
    /// `prepare` must give TEMZ_OK for `run` to be called.
    template <class Prepare, class Run>
    temz_status passRun(Prepare prepare, Run run) {
        const temz_status status = pass(Use::changing, [&] {
            const temz_status prepared = prepare();
            if (prepared == TEMZ_OK)
                runner = GetCurrentThreadId();
            return prepared;
        });
        if (status != TEMZ_OK)
            return status;
        const temz_status outcome = withoutExceptions(run);
        const Lock lock(section);
        runner = nobody;
        return outcome;
    }

private:
    /// Needs no memory, unlike the runtime's mutexes.
    class Lock {
    public:
        explicit Lock(SRWLOCK& section) : section(section) { AcquireSRWLockExclusive(&section); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        ~Lock() { ReleaseSRWLockExclusive(&section); }

    private:
        SRWLOCK& section;
    };

    static constexpr DWORD nobody = 0;  // no thread has this id

    temz_status due(Use use) const {
        if (runner == nobody)
            return TEMZ_OK;
        if (runner != GetCurrentThreadId())
            return TEMZ_BUSY;
        return use == Use::asking ? TEMZ_OK : TEMZ_IN_CALLBACK;
    }

    template <class Body>
    static temz_status withoutExceptions(Body& body) {
        try {
            return body();
        } catch (const std::bad_alloc&) {
            return TEMZ_NO_MEMORY;
        } catch (...) {
            // The last place at which anything can be caught: behind it are hosts in other
            // languages.
            return TEMZ_INTERNAL;
        }
    }

    SRWLOCK section = SRWLOCK_INIT;
    DWORD runner = nobody;  // the thread of the run that is going on
};
