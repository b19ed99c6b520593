#include "SessionEnd.h"

#include <memory>
#include <type_traits>

namespace {

/// Of the window and of its class.
constexpr wchar_t name[] = L"TemzRun";

/// What the system shows to a user who waits for the session's end.
constexpr wchar_t whyItTakesTime[] = L"A setup ends behind the action that is under way.";

struct WindowDestroyer {
    void operator()(HWND window) const { DestroyWindow(window); }
};
using WindowPtr = std::unique_ptr<std::remove_pointer_t<HWND>, WindowDestroyer>;

const SessionEnd* current = nullptr;

}  // namespace

SessionEnd::SessionEnd(StopRequest& stop)
    : stop(stop), runEnded(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    current = this;
    thread.reset(CreateThread(nullptr, 0, &listen, nullptr, 0, nullptr));
}

SessionEnd::~SessionEnd() {
    SetEvent(runEnded.get());
    WaitForSingleObject(thread.get(), INFINITE);
    current = nullptr;
}

DWORD SessionEnd::listen(void*) {
    WNDCLASSEXW kind{};
    kind.cbSize = sizeof kind;
    kind.lpfnWndProc = &hear;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.lpszClassName = name;
    RegisterClassExW(&kind);
    // Windows without a parent are told of the session's end, those for messages only are not.
    if (const WindowPtr window{sessionCalls.CreateWindowExW(0, name, name, 0, 0, 0, 0, 0, nullptr,
                                                            nullptr, kind.hInstance, nullptr)}) {
        sessionCalls.ShutdownBlockReasonCreate(window.get(), whyItTakesTime);
        current->handleMessages();
        sessionCalls.ShutdownBlockReasonDestroy(window.get());
    }
    UnregisterClassW(name, kind.hInstance);
    return 0;
}

void SessionEnd::handleMessages() const {
    const HANDLE ended = runEnded.get();
    while (MsgWaitForMultipleObjects(1, &ended, FALSE, INFINITE, QS_ALLINPUT) ==
           WAIT_OBJECT_0 + 1) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    }
}

// The first message asks, and is to be answered at once. The second one tells what came of it, and
// may take time: the session ends when it is answered, or when the system, or the user, no longer
// waits.
LRESULT SessionEnd::hear(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_QUERYENDSESSION) {
        current->stop.setSessionEnding(true);
        return TRUE;
    }
    if (message == WM_ENDSESSION) {
        const bool ending = wParam != FALSE;
        current->stop.setSessionEnding(ending);
        if (ending)
            WaitForSingleObject(current->runEnded.get(), INFINITE);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}
