#include "StopRequest.h"

#include "Console.h"

namespace {

StopRequest* current = nullptr;

}  // namespace

StopRequest::StopRequest() : requested(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    current = this;
    SetConsoleCtrlHandler(&handle, TRUE);
}

StopRequest::~StopRequest() {
    SetConsoleCtrlHandler(&handle, FALSE);
    current = nullptr;
}

bool StopRequest::wanted() const {
    return WaitForSingleObject(requested.get(), 0) == WAIT_OBJECT_0;
}

void StopRequest::wait(std::chrono::milliseconds time) const {
    WaitForSingleObject(requested.get(), static_cast<DWORD>(time.count()));
}

void StopRequest::setAction(const std::wstring& text) {
    AcquireSRWLockExclusive(&lock);
    action = text;
    ReleaseSRWLockExclusive(&lock);
}

BOOL StopRequest::handle(DWORD event) {
    return current ? current->take(event) : FALSE;
}

// Runs on a thread of the system's, beside the run.
BOOL StopRequest::take(DWORD event) {
    const bool isKey = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    if (isKey && wanted())
        return FALSE;  // the system ends the process
    SetEvent(requested.get());
    if (isKey) {
        AcquireSRWLockShared(&lock);
        write(Stream::error, L"\ntemz: The run ends behind this action: " + action +
                                 L". Press Ctrl+C once more to end it at once.\n");
        ReleaseSRWLockShared(&lock);
    } else {
        // To return would end the process. The system gives it some seconds to end by itself.
        Sleep(INFINITE);
    }
    return TRUE;
}
