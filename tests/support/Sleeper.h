#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

/// A running program that does nothing, for tests in which it is ended.
class Sleeper {
public:
    /// Puts the program at this path, unless it is there, starts it and waits until it runs.
    explicit Sleeper(const std::wstring& executable);
    Sleeper(const Sleeper&) = delete;
    Sleeper& operator=(const Sleeper&) = delete;
    /// Ends the program if it still runs.
    ~Sleeper();

    uint32_t id() const { return process.dwProcessId; }
    bool isRunning() const;
    /// Waits until it has ended, at most for some seconds; false when it still runs then.
    bool waitUntilEnded() const;
    /// The exit code, once it has ended.
    uint32_t exitCode() const;

private:
    PROCESS_INFORMATION process{};
};

/// Copies the sleeper's executable, with its missing directories, to a path of the test's choice.
void placeSleeper(const std::wstring& executable);
