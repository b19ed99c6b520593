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

/// The wish to end a run: of the user, by Ctrl+C, Ctrl+Break or the closing of the console's
/// window, or of the system, which ends the session. It lets the action that is under way end; a
/// second Ctrl+C ends the process at once, with the code of a run that the user has stopped. There
/// is one object of this class at a time.
class StopRequest {
public:
    StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;
    ~StopRequest();

    bool wanted() const;

    /// Waits, at most until the wish.
    void wait(std::chrono::milliseconds time) const;

    /// An event that is set while there is the wish, for those who wait for something else as well.
    HANDLE event() const { return requested.get(); }

    /// What is being done, to be told when the wish comes. Before the first action it isn't told.
    void setAction(const std::wstring& text);

    /// The session is about to end; or, with false, it goes on after all, and only the user may
    /// still want the run to end. On any thread.
    void setSessionEnding(bool ending);
    bool isSessionEnding() const;

private:
    static BOOL WINAPI handle(DWORD event);
    BOOL take(DWORD event);
    /// Sets the wish of the one or the other. Gives what it was.
    bool setWish(bool StopRequest::*wish, bool wanted);
    /// Writes a line about the action that is under way.
    void tell(const std::wstring& before, const std::wstring& behind) const;

    HandlePtr requested;  // an event
    mutable SRWLOCK lock = SRWLOCK_INIT;
    bool ofUser = false;
    bool ofSystem = false;
    std::wstring action;
};
