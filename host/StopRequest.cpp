#include "StopRequest.h"

#include <utility>

#include "Console.h"
#include "ExitCodes.h"

namespace {

StopRequest* current = nullptr;

}  // namespace

StopRequest::StopRequest() : requested(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    current = this;
    stopCalls.SetConsoleCtrlHandler(&handle, TRUE);
}

StopRequest::~StopRequest() {
    stopCalls.SetConsoleCtrlHandler(&handle, FALSE);
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

void StopRequest::setSessionEnding(bool ending) {
    if (!setWish(&StopRequest::ofSystem, ending) && ending)
        tell(L"The session ends, and the run behind this action: ", L".");
}

bool StopRequest::isSessionEnding() const {
    AcquireSRWLockShared(&lock);
    const bool ending = ofSystem;
    ReleaseSRWLockShared(&lock);
    return ending;
}

BOOL StopRequest::handle(DWORD event) {
    return current ? current->take(event) : FALSE;
}

bool StopRequest::setWish(bool StopRequest::*wish, bool wanted) {
    AcquireSRWLockExclusive(&lock);
    const bool before = std::exchange(this->*wish, wanted);
    if (ofUser || ofSystem)
        SetEvent(requested.get());
    else
        ResetEvent(requested.get());
    ReleaseSRWLockExclusive(&lock);
    return before;
}

void StopRequest::tell(const std::wstring& before, const std::wstring& behind) const {
    AcquireSRWLockShared(&lock);
    if (!action.empty())
        write(Stream::error, L"\ntemz: " + before + action + behind + L"\n");
    ReleaseSRWLockShared(&lock);
}

// Runs on a thread of the system's, beside the run.
BOOL StopRequest::take(DWORD event) {
    const auto code = static_cast<UINT>(exitCodeOf(Ending::stoppedByUser));
    const bool isKey = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    const bool again = setWish(&StopRequest::ofUser, true);
    if (isKey && again) {
        tell(L"Ended in the middle of this action: ", L" (" + std::to_wstring(code) + L").");
        restoreConsole();
        // The run's own thread is in the middle of something, so nothing can be tidied up.
        stopCalls.TerminateProcess(GetCurrentProcess(), code);
    } else if (isKey) {
        tell(L"The run ends behind this action: ", L". Press Ctrl+C once more to end it at once.");
    } else {
        // To return would end the process. The system gives it some seconds to end by itself.
        stopCalls.Sleep(INFINITE);
    }
    return TRUE;
}
