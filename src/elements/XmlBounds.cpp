#include "elements/XmlBounds.h"

#include <tinyxml.h>

#include <cctype>
#include <cstring>

namespace {

constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

/// What the parser takes each byte for. It asks the runtime, of which the host chooses the locale:
/// so a table holds only for one reading.
class ByteClasses {
public:
    ByteClasses() {
        for (int byte = 1; byte < 256; ++byte) {
            const bool isLetter = byte >= 127 || std::isalpha(byte) != 0 || byte == '_';
            const bool isMore =
                std::isdigit(byte) != 0 || byte == '-' || byte == '.' || byte == ':';
            classes[byte] = static_cast<unsigned char>((std::isspace(byte) ? space : 0) |
                                                       (isLetter ? nameStart | namePart : 0) |
                                                       (isMore ? namePart : 0));
        }
    }

    bool isSpace(char byte) const { return has(byte, space); }
    bool startsName(char byte) const { return has(byte, nameStart); }
    bool continuesName(char byte) const { return has(byte, namePart); }

private:
    enum : unsigned char { space = 1, nameStart = 2, namePart = 4 };

    bool has(char byte, unsigned char wanted) const {
        return (classes[static_cast<unsigned char>(byte)] & wanted) != 0;
    }

    unsigned char classes[256] = {};
};

bool isQuote(char character) {
    return character == '"' || character == '\'';
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
class BoundsReader {
public:
    BoundsReader(const char* text, const XmlBounds& bounds) : position(text), bounds(bounds) {
        if (startsWith(byteOrderMark))
            encoding = TIXML_ENCODING_UTF8;
    }

    std::optional<XmlExcess> findExcess() {
        while (findMarkup() && skipMarkup())
            ;
        return excess;
    }

private:
    template <size_t size>
    bool startsWith(const char (&mark)[size]) const {
        for (size_t i = 0; i + 1 < size; ++i)
            if (position[i] != mark[i])
                return false;
        return true;
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
        if (classes.startsName(position[1]))
            return skipStartTag();
        if (startsWithIgnoringCase(position, "<?xml"))
            return skipDeclaration();
        if (startsWith("<!--"))
            return skipBehind("-->", 4);
        if (startsWith("<![CDATA["))
            return skipBehind("]]>", 9);
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
        const char* const element = position;
        if (++depth > bounds.depth)
            return exceed(XmlExcess::depth, element);
        ++position;
        skipSpace();
        if (!skipName())
            return false;
        size_t attributes = 0;
        for (skipSpace(); *position != '>'; skipSpace()) {
            if (skip('/')) {
                --depth;
                return skip('>');
            }
            if (!skipAttribute())
                return false;
            if (++attributes > bounds.attributes)
                return exceed(XmlExcess::attributes, element);
        }
        return skip('>');
    }

    bool exceed(XmlExcess::Bound bound, const char* element) {
        excess = {bound, element};
        return false;
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
        while (*position && !classes.isSpace(*position) &&
               std::strchr("/>\"'", *position) == nullptr)
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
        if (!classes.startsName(*position))
            return false;
        while (classes.continuesName(*position))
            ++position;
        return true;
    }

    /// In UTF-8 a byte order mark is a blank wherever it stands, and so are two that aren't
    /// characters.
    void skipSpace() {
        for (;;) {
            if (classes.isSpace(*position))
                ++position;
            else if (encoding == TIXML_ENCODING_UTF8 && *position == '\xEF' &&
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
        if (*position == '&' && position[1] == '#' && position[2])
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
    const XmlBounds bounds;
    const ByteClasses classes;
    size_t depth = 0;
    std::optional<XmlExcess> excess;
};

}  // namespace

std::optional<XmlExcess> findExcess(const char* text, const XmlBounds& bounds) {
    return BoundsReader(text, bounds).findExcess();
}
