#include "logging/CLogWriter.h"

#include "logging/CLogLine.h"
#include "system/LocalTime.h"

CLogWriter logWriter;

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
    line.path = path;
    line.maxSize = maxSize;
    line.lock = &lock;
    line.threshold = threshold;
    line.level = level;

    line << "[" << levelName(level) << "]";
    if (const auto now = localTime())
        line << "[" << now->year << "-" << now->month << "-" << now->day << " " << now->hour << ":"
             << now->minute << ":" << now->second << "] ";
    return line;
}
