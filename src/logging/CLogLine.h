#pragma once

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <type_traits>

class CLogSyn;

/// One message of the log. It is opened at a level by CLogWriter::open, fed like a stream, and
/// written when it is destroyed, also by an exception that passes through the composing.
class CLogLine {
public:
    CLogLine() = default;
    CLogLine(const CLogLine&) = delete;
    CLogLine& operator=(const CLogLine&) = delete;
    ~CLogLine();

    /// Wide text is converted to the active code page. Text that is null, or can't be converted for
    /// lack of memory, appends "null".
    CLogLine& operator<<(const char* narrow);
    CLogLine& operator<<(const wchar_t* wide);
    CLogLine& operator<<(const std::wstring& wide);
    CLogLine& operator<<(wchar_t character);
    CLogLine& operator<<(bool value);

    template <class Integer>
    requires std::is_integral_v<Integer> CLogLine& operator<<(Integer value) {
        text << +value;  // a number, also of the types that are characters to a stream
        return *this;
    }

    /// What has been composed, and the level that the line was opened at.
    std::string composed() const { return text.str(); }
    int32_t openedAt() const { return level; }

    /// Writes the line to the log's file, or to the standard output where the log has none.
    void write();

private:
    friend class CLogWriter;

    void appendToFile();

    std::ostringstream text;
    std::string path;
    int32_t maxSize = 0;  // bytes
    std::ofstream file;
    CLogSyn* lock = nullptr;
    int32_t threshold = 1;
    int32_t level = 0;
};
