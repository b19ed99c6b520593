#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "author/check/Finding.h"

/// A stretch of a script's text, in bytes.
struct Span {
    size_t offset = 0;
    size_t length = 0;
};

/// The text of a script file as the parser gets it: every end of a line is a line feed, and it ends
/// at the first NUL. Tells what stands where. Texts are shown as UTF-8 when that is what the file
/// is, otherwise in the active code page.
class ScriptText {
public:
    /// Nothing when the file can't be opened.
    static std::optional<ScriptText> read(const std::wstring& file);

    explicit ScriptText(std::string_view bytes);

    const std::string& bytes() const { return text; }
    bool isUtf8() const { return utf8; }
    bool isAscii() const { return ascii; }
    /// Whether a NUL ends the text before the file ends, as in UTF-16.
    bool isCutShort() const { return cutShort; }

    /// The number of the line in which a stretch begins, counted from 1.
    uint32_t lineNumberOf(Span span) const;
    /// The line of that number, without its end; empty when it has more than 1000 bytes, which
    /// nobody looks at.
    std::wstring line(uint32_t number) const;
    /// The place of a column that is counted in characters, both from 1.
    Span spanAt(size_t line, size_t column, bool utf8Columns) const;

    /// Tells the places of stretches that come in the order of the text, all of them in one walk
    /// along it: a script may be one line.
    class Places {
    public:
        explicit Places(const ScriptText& script) : script(script) {}
        Place next(Span span);

    private:
        const ScriptText& script;
        size_t reached = 0;
        size_t unitsBefore = 0;  // in the line of what is reached
    };

private:
    size_t lineOf(size_t offset) const;
    std::string_view lineBytes(size_t index) const;
    std::wstring wide(std::string_view part) const;

    std::string text;
    std::vector<size_t> lineStarts;  // behind a byte order mark
    bool utf8 = false;
    bool ascii = false;
    bool cutShort = false;
};

/// How many bytes a character of UTF-8 has that begins so; 1 for what begins none.
size_t utf8Length(char first);
