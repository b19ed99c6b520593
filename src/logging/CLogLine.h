#pragma once

#include <charconv>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
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

    /// Wide text is converted to the active code page. Text that is null, and wide text that can't
    /// be converted, also for lack of memory, appends "null"; other pieces for which there is no
    /// memory are left out.
    CLogLine& operator<<(const char* narrow);
    CLogLine& operator<<(const wchar_t* wide);
    CLogLine& operator<<(const std::wstring& wide);
    CLogLine& operator<<(wchar_t character);
    CLogLine& operator<<(bool value);

    template <class Integer>
    requires std::is_integral_v<Integer> CLogLine& operator<<(Integer value) {
        char digits[20];  // 2^64 - 1 has as many, and -2^63
        // A number, also of the types that are characters.
        const auto end = std::to_chars(digits, std::end(digits), +value).ptr;
        return append({digits, end});
    }

    /// What has been composed, and the level that the line was opened at.
    const std::string& composed() const { return text; }
    int32_t openedAt() const { return level; }

    /// Writes the line to the log's file, or to the standard output where the log has none. Once:
    /// its text is the file's from then on.
    void write();

private:
    friend class CLogWriter;

    void makeRoom(size_t length);
    CLogLine& append(std::string_view piece);
    void appendToFile();

    std::string text;
    const char* path = "";  // the writer's
    int32_t maxSize = 0;    // bytes
    CLogSyn* lock = nullptr;
    int32_t threshold = 1;
    int32_t level = 0;
};
