#pragma once

#include <chrono>

#include "Handles.h"

/// One run at a time on a machine, in whatever session: held from the object's making, if it could
/// be had, to its end. A run that crashed doesn't hold it.
class RunGuard {
public:
    /// Waits at most so long for another run to end.
    explicit RunGuard(std::chrono::seconds patience);
    RunGuard(const RunGuard&) = delete;
    RunGuard& operator=(const RunGuard&) = delete;
    ~RunGuard();

    /// Whether no other run goes on.
    explicit operator bool() const { return held; }

private:
    HandlePtr mutex;
    bool held = false;
};
