#include "logging/CLogWriter.h"

#include "logging/CLogLine.h"
#include "system/LocalTime.h"

CLogWriter logWriter;

namespace {

/// What a line is expected to come to, in bytes.
constexpr size_t usualLength = 200;

}  // namespace

const char* levelName(int32_t level) {
    switch (level) {
        case DEBUG:
            return "DEBUG";
        case INFO:
            return "INFO";
        case WARNNING:
            return "WARNNING";
        case ERROR:
            return "ERROR";
        default:
            return "UNKNOWN";
    }
}

CLogLine& CLogWriter::open(int32_t level, CLogLine& line) {
    line.path = path.c_str();
    line.maxSize = maxSize;
    line.lock = &lock;
    line.threshold = threshold;
    line.level = level;

    line.makeRoom(usualLength);
    line << "[" << levelName(level) << "]";
    if (const auto now = localTime())
        line << "[" << now->year << "-" << now->month << "-" << now->day << " " << now->hour << ":"
             << now->minute << ":" << now->second << "] ";
    return line;
}
