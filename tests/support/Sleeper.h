#pragma once

#include <windows.h>

#include <string>

/// A running program that does nothing, for tests in which it is ended.
class Sleeper {
public:
    /// Starts the executable, which placeSleeper has made, and waits until it runs.
    explicit Sleeper(const std::wstring& executable);
    Sleeper(const Sleeper&) = delete;
    Sleeper& operator=(const Sleeper&) = delete;
    /// Ends the program if it still runs.
    ~Sleeper();

    bool isRunning() const;
    /// Waits until it has ended, at most for some seconds; false when it still runs then.
    bool waitUntilEnded() const;

private:
    PROCESS_INFORMATION process{};
};

/// Copies the sleeper's executable, with its missing directories, to a path of the test's choice.
void placeSleeper(const std::wstring& executable);
