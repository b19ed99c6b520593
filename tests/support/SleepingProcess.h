#pragma once

#include <cstdint>
#include <string>

/// A program that does nothing but run, from a file at `path`, as long as the object lives or until
/// something ends it.
class SleepingProcess {
public:
    /// Puts the program's file at `path`, unless it is there already, and starts it.
    explicit SleepingProcess(const std::wstring& path);
    SleepingProcess(const SleepingProcess&) = delete;
    SleepingProcess& operator=(const SleepingProcess&) = delete;
    ~SleepingProcess();

    uint32_t id() const { return processId; }
    bool isRunning() const;

    /// The exit code of the process that was ended, which may take a moment to vanish.
    uint32_t exitCode() const;

private:
    void* process;
    uint32_t processId;
};
