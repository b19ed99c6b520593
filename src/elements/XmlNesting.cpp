#include "elements/XmlNesting.h"

#include <cctype>
#include <cstring>

namespace {

bool isSpace(char character) {
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

bool isQuote(char character) {
    return character == '"' || character == '\'';
}

/// An element begins with a letter, an underscore or any byte above ASCII.
bool startsName(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 127 || std::isalpha(byte) != 0 || byte == '_';
}

/// Reads a text tag by tag with the parser's own idea of where each of them ends.
class NestingReader {
public:
    explicit NestingReader(const char* text) : position(text) {}

    bool staysWithin(size_t limit) {
        for (position = std::strchr(position, '<'); position;
             position = std::strchr(position, '<')) {
            if (!skipMarkup() || depth > limit)
                return false;
        }
        return true;
    }

private:
    bool skipMarkup() {
        if (startsWith("<?xml"))
            return skipDeclaration();
        if (startsWith("<!--"))
            return skipBehind("-->", 4);
        if (startsWith("<![CDATA["))
            return skipBehind("]]>", 9);
        if (startsWith("</"))
            return skipEndTag();
        if (startsName(position[1]))
            return skipStartTag();
        return skipBehind(">", 1);
    }

    bool startsWith(const char* mark) const {
        return _strnicmp(position, mark, std::strlen(mark)) == 0;
    }

    /// Goes behind the next `mark` that begins `offset` or more further on, or to the text's end.
    bool skipBehind(const char* mark, size_t offset) {
        const char* found = std::strstr(position + offset, mark);
        position = found ? found + std::strlen(mark) : position + std::strlen(position);
        return true;
    }

    bool skipEndTag() {
        position += 2;
        if (depth > 0)
            --depth;
        return true;
    }

    /// The parser takes a quoted value of a declaration for one only under some names. Whatever
    /// could end differently in its eyes, blanks and angle brackets within quotes, is refused.
    bool skipDeclaration() {
        for (; *position && *position != '>'; ++position) {
            if (!isQuote(*position))
                continue;
            const char quote = *position;
            do
                ++position;
            while (*position && !isQuote(*position) && !isSpace(*position) && *position != '<' &&
                   *position != '>');
            if (*position != quote)
                return false;
        }
        return true;
    }

    /// A quote opens a value only behind an equals sign; anywhere else the tag is malformed.
    bool skipStartTag() {
        char previous = *position++;
        for (; *position && *position != '>'; ++position) {
            if (isQuote(*position)) {
                if (previous != '=')
                    return false;
                position = std::strchr(position + 1, *position);
                if (position == nullptr)
                    return false;
            }
            if (!isSpace(*position))
                previous = *position;
        }
        if (previous != '/')
            ++depth;
        return true;
    }

    const char* position;
    size_t depth = 0;
};

}  // namespace

bool isNestedWithin(const char* text, size_t limit) {
    return NestingReader(text).staysWithin(limit);
}
