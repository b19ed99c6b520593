#pragma once

#include <windows.h>

#include <optional>
#include <string>

/// A program that runs with all that it starts itself, and that can be ended with all of it at any
/// moment, as the power ends programs.
class CutProgram {
public:
    /// Starts a program that lies beside the test's, with these arguments.
    CutProgram(const std::wstring& name, const std::wstring& arguments);
    CutProgram(const CutProgram&) = delete;
    CutProgram& operator=(const CutProgram&) = delete;
    ~CutProgram();

    /// Waits for its end, at most so many milliseconds, and gives its exit code.
    std::optional<DWORD> waitForEnd(DWORD patience = 60'000) const;

    /// Ends it, if it still runs, and all that it has started.
    void cut() const;

private:
    HANDLE job = nullptr;
    PROCESS_INFORMATION process{};
};
