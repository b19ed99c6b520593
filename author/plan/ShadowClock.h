#pragma once

#include "plan/AnsweredCall.h"
#include "system/ClockCalls.h"

/// A clock that goes on by what is slept, while nobody waits.
class ShadowClock {
public:
    DWORD answer(Call<&ClockCalls::GetTickCount>) const { return system.GetTickCount() + slept; }
    void answer(Call<&ClockCalls::Sleep>, DWORD milliseconds) { slept += milliseconds; }

private:
    const ClockCalls system = clockCalls;
    DWORD slept = 0;
};
