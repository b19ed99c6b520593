#pragma once

#include "logging/CLogLine.h"
#include "system/CallTable.h"

namespace own {

inline void WriteLine(CLogLine& line) {
    line.write();
}

}  // namespace own

/// The writing of a composed line to the log.
#define TEMZ_LOG_CALLS(CALL) CALL(WriteLine)
TEMZ_CALL_TABLE(LogCalls, logCalls, "log", TEMZ_LOG_CALLS, TEMZ_OWN_CALL)
