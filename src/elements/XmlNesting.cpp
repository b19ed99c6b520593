#include "elements/XmlNesting.h"

#include <tinyxml.h>

#include <cctype>
#include <cstring>

namespace {

constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

bool isSpace(char character) {
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

bool isQuote(char character) {
    return character == '"' || character == '\'';
}

/// A name begins with a letter, an underscore or any byte above ASCII.
bool startsName(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 127 || std::isalpha(byte) != 0 || byte == '_';
}

bool continuesName(char character) {
    return startsName(character) || std::isdigit(static_cast<unsigned char>(character)) != 0 ||
           character == '-' || character == '.' || character == ':';
}

/// How many bytes a character of UTF-8 has that begins so. Invalid bytes stand for themselves.
size_t utf8Length(char first) {
    const auto byte = static_cast<unsigned char>(first);
    if (byte < 0xC2 || byte > 0xF4)
        return 1;
    return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

/// Follows a text in the parser's steps, up to where the parser finds it malformed and gives up:
/// there a step is false.
class NestingReader {
public:
    NestingReader(const char* text, size_t limit) : position(text), limit(limit) {
        if (startsWith(byteOrderMark))
            encoding = TIXML_ENCODING_UTF8;
    }

    const char* findBeyond() {
        while (beyond == nullptr && findMarkup() && skipMarkup())
            ;
        return beyond;
    }

private:
    bool startsWith(const char* mark) const {
        return std::strncmp(position, mark, std::strlen(mark)) == 0;
    }

    static bool startsWithIgnoringCase(const char* text, const char* mark) {
        return _strnicmp(text, mark, std::strlen(mark)) == 0;
    }

    /// Text can stand in front of a markup only inside an element.
    bool findMarkup() {
        skipSpace();
        return depth > 0 ? skipText('<') : *position == '<';
    }

    bool skipMarkup() {
        if (startsWithIgnoringCase(position, "<?xml"))
            return skipDeclaration();
        if (startsWith("<!--"))
            return skipBehind("-->", 4);
        if (startsWith("<![CDATA["))
            return skipBehind("]]>", 9);
        if (startsName(position[1]))
            return skipStartTag();
        if (position[1] == '/' && depth > 0)
            --depth;
        return skipBehind(">", 1);
    }

    /// Goes behind the next `mark` that begins `offset` or more further on.
    bool skipBehind(const char* mark, size_t offset) {
        const char* found = std::strstr(position + offset, mark);
        if (found == nullptr)
            return false;
        position = found + std::strlen(mark);
        return true;
    }

    bool skipStartTag() {
        if (++depth > limit) {
            beyond = position;
            return false;
        }
        ++position;
        skipSpace();
        if (!skipName())
            return false;
        for (skipSpace(); *position != '>'; skipSpace()) {
            if (skip('/')) {
                --depth;
                return skip('>');
            }
            if (!skipAttribute())
                return false;
        }
        return skip('>');
    }

    /// The parser itself reads it: it holds no elements, but may name the encoding, and that in
    /// references, too.
    bool skipDeclaration() {
        TiXmlDeclaration declaration;
        position = declaration.Parse(position, nullptr, encoding);
        if (depth == 0 && encoding == TIXML_ENCODING_UNKNOWN)
            setEncoding(declaration.Encoding());
        return position != nullptr;
    }

    /// UTF-8 is also what goes without a name.
    void setEncoding(const char* name) {
        const bool isUtf8 = *name == '\0' || startsWithIgnoringCase(name, "UTF-8") ||
                            startsWithIgnoringCase(name, "UTF8");
        encoding = isUtf8 ? TIXML_ENCODING_UTF8 : TIXML_ENCODING_LEGACY;
    }

    /// A value that no quote opens ends at a blank, at the tag's end, or at a quote, with which
    /// nothing can begin.
    bool skipAttribute() {
        if (!skipName())
            return false;
        skipSpace();
        if (!skip('='))
            return false;
        skipSpace();
        const char quote = *position;
        if (isQuote(quote)) {
            ++position;
            return skipText(quote) && skip(quote);
        }
        while (*position && !isSpace(*position) && std::strchr("/>\"'", *position) == nullptr)
            ++position;
        return true;
    }

    bool skip(char expected) {
        if (*position != expected)
            return false;
        ++position;
        return true;
    }

    bool skipName() {
        if (!startsName(*position))
            return false;
        while (continuesName(*position))
            ++position;
        return true;
    }

    /// In UTF-8 a byte order mark is a blank wherever it stands, and so are two that aren't
    /// characters.
    void skipSpace() {
        for (;;) {
            if (isSpace(*position))
                ++position;
            else if (encoding == TIXML_ENCODING_UTF8 &&
                     (startsWith(byteOrderMark) || startsWith("\xEF\xBF\xBE") ||
                      startsWith("\xEF\xBF\xBF")))
                position += 3;
            else
                return;
        }
    }

    bool skipText(char end) {
        while (*position && *position != end)
            if (!skipCharacter())
                return false;
        return *position == end;
    }

    /// The first byte of a character of UTF-8 tells its length, and the parser takes the bytes that
    /// follow for a part of it whatever they are, marks included.
    bool skipCharacter() {
        if (startsWith("&#") && position[2])
            return skipNumberedReference();
        for (size_t left = encoding == TIXML_ENCODING_UTF8 ? utf8Length(*position) : 1;
             left > 0 && *position; --left)
            ++position;
        return true;
    }

    /// The parser looks for the end first and then reads the digits backwards, so that whatever
    /// stands in front of another "#" or "x" belongs to the reference too.
    bool skipNumberedReference() {
        const bool isHexadecimal = position[2] == 'x';
        const char* end = std::strchr(position + 2, ';');
        if (end == nullptr)
            return false;
        for (const char* digit = end - 1; *digit != (isHexadecimal ? 'x' : '#'); --digit) {
            const auto byte = static_cast<unsigned char>(*digit);
            if (!(isHexadecimal ? std::isxdigit(byte) : std::isdigit(byte)))
                return false;
        }
        position = end + 1;
        return true;
    }

    const char* position;
    /// What the parser takes the bytes for. Until it knows, each byte is a character.
    TiXmlEncoding encoding = TIXML_ENCODING_UNKNOWN;
    const size_t limit;
    size_t depth = 0;
    const char* beyond = nullptr;
};

}  // namespace

const char* findNestedBeyond(const char* text, size_t limit) {
    return NestingReader(text, limit).findBeyond();
}
