#pragma once

#include <cstdint>
#include <string>

#include "logging/CLogFileSyn.h"

class CLogLine;

enum LogLevel : int32_t { DEBUG = 1, INFO = 2, WARNNING = 3, ERROR = 4 };

/// The name of a level as it stands in a line; "UNKNOWN" for a number that is none.
const char* levelName(int32_t level);

/// The log file of the process. Path, size limit and threshold are fixed. Every line opens the
/// file, appends and closes it again; its directory is not made, and without it no line is kept.
class CLogWriter {
public:
    /// Makes `line` a line of this log at `level` and writes its prefix, "[LEVEL][time] ".
    CLogLine& open(int32_t level, CLogLine& line);

private:
    std::string path = "C:\\InstallLog\\temz.log";
    int32_t maxSize = 3145728;  // bytes: a file that has grown past 3 MiB is started anew
    CLogFileSyn lock;
    int32_t threshold = INFO;
};

/// The one log. Built when the library is loaded.
extern CLogWriter logWriter;
