#pragma once

#include <windows.h>

/// The Win32 call that makes the thread; tests replace it.
struct DeepStackCalls {
    decltype(&::CreateThread) CreateThread = ::CreateThread;
};

inline DeepStackCalls deepStackCalls;

/// Calls `body` on a thread with a stack on which whatever a run stands on its own has room twice
/// over, as a plan needs, and waits for it. Where there can be no such thread, on this one.
template <class Body>
void onDeepStack(const Body& body) {
    constexpr SIZE_T reserved = SIZE_T{256} << 20;  // of addresses; memory is taken as it is used
    const auto call = [](void* called) -> DWORD {
        (*static_cast<const Body*>(called))();
        return 0;
    };
    const HANDLE thread =
        deepStackCalls.CreateThread(nullptr, reserved, call, const_cast<Body*>(&body),
                                    STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == nullptr) {
        body();
        return;
    }
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}
