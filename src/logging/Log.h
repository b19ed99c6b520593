#pragma once

#include <cstdint>

#include "logging/CLogLine.h"
#include "logging/CLogWriter.h"

/// Writes one line to the log: the pieces, one behind the other, at a level.
template <class... Pieces>
void writeLog(int32_t level, const Pieces&... pieces) {
    CLogLine line;
    logWriter.open(level, line);
    (line << ... << pieces);
}
