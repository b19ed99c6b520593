#pragma once

#include "logging/LogCalls.h"
#include "plan/AnsweredCall.h"

/// A log that isn't written.
class ShadowLog {
public:
    void answer(Call<&LogCalls::WriteLine>, CLogLine& /*line*/) {}
};
