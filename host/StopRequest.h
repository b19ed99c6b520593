#pragma once

#include <windows.h>

#include <chrono>
#include <string>

#include "Handles.h"

/// The Win32 calls of a stop; tests replace them, since Wine tells a program only of keys.
struct StopCalls {
    decltype(&::SetConsoleCtrlHandler) SetConsoleCtrlHandler = ::SetConsoleCtrlHandler;
    decltype(&::Sleep) Sleep = ::Sleep;
    decltype(&::TerminateProcess) TerminateProcess = ::TerminateProcess;
};

inline StopCalls stopCalls;

/// The user's wish to end a run: Ctrl+C, Ctrl+Break, the closing of the console's window, logging
/// off, shutting down, though of the latter two Windows may tell services alone. The first one lets
/// the action that is under way end; a second Ctrl+C ends the process at once, with the code of a
/// run that the user has stopped. There is one object of this class at a time.
class StopRequest {
public:
    StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;
    ~StopRequest();

    bool wanted() const;

    /// Waits, at most until the wish.
    void wait(std::chrono::milliseconds time) const;

    /// What is being done, to be told when the wish comes.
    void setAction(const std::wstring& text);

private:
    static BOOL WINAPI handle(DWORD event);
    BOOL take(DWORD event);
    /// Writes a line about the action that is under way.
    void tell(const std::wstring& before, const std::wstring& behind);

    HandlePtr requested;  // an event
    SRWLOCK lock = SRWLOCK_INIT;
    std::wstring action;
};
