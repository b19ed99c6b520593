#pragma once

#include <windows.h>

#include "Handles.h"
#include "StopRequest.h"

/// The Win32 calls about the window of a SessionEnd; tests replace them.
struct SessionCalls {
    decltype(&::CreateWindowExW) CreateWindowExW = ::CreateWindowExW;
    decltype(&::ShutdownBlockReasonCreate) ShutdownBlockReasonCreate = ::ShutdownBlockReasonCreate;
    decltype(&::ShutdownBlockReasonDestroy) ShutdownBlockReasonDestroy =
        ::ShutdownBlockReasonDestroy;
};

inline SessionCalls sessionCalls;

/// For the life of a run, hears that Windows is about to end the session, wishes that the run ends
/// before that, and has the session wait for it. As the documentation of SetConsoleCtrlHandler
/// says, a console program that has loaded user32 or gdi32 gets neither CTRL_LOGOFF_EVENT nor
/// CTRL_SHUTDOWN_EVENT, and is to have a hidden window for the messages that other programs get.
/// That window has a thread of its own. Where none can be made, the run goes on without it. There
/// is one object of this class at a time.
class SessionEnd {
public:
    explicit SessionEnd(StopRequest& stop);
    SessionEnd(const SessionEnd&) = delete;
    SessionEnd& operator=(const SessionEnd&) = delete;
    /// The run has ended.
    ~SessionEnd();

private:
    static DWORD WINAPI listen(void*);
    static LRESULT CALLBACK hear(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void handleMessages() const;

    StopRequest& stop;
    const HandlePtr runEnded;  // an event
    HandlePtr thread;
};
