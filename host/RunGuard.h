#pragma once

#include <chrono>

#include "Handles.h"

/// One run at a time on a machine, in whatever session: held from the object's making or its wait,
/// where it could be had, to its end. A run that crashed doesn't hold it.
class RunGuard {
public:
    /// Doesn't wait.
    RunGuard();
    RunGuard(const RunGuard&) = delete;
    RunGuard& operator=(const RunGuard&) = delete;
    ~RunGuard();

    /// Where another run goes on: waits for its end, at most so long, and only until the event is
    /// set.
    void wait(std::chrono::seconds patience, HANDLE unless);

    /// Whether no other run goes on.
    explicit operator bool() const { return held; }

private:
    HandlePtr mutex;
    bool held = false;
};
