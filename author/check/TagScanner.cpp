#include "author/check/TagScanner.h"

#include <cctype>
#include <string_view>

namespace {

bool isSpace(char letter) {
    return std::isspace(static_cast<unsigned char>(letter)) != 0;
}

bool startsName(char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    return byte >= 127 || std::isalpha(byte) != 0 || byte == '_';
}

bool continuesName(char letter) {
    return startsName(letter) || std::isdigit(static_cast<unsigned char>(letter)) != 0 ||
           letter == '-' || letter == '.' || letter == ':';
}

class TagScanner {
public:
    explicit TagScanner(std::string_view text) : text(text) {}

    std::vector<TagPlaces> scan() {
        std::vector<TagPlaces> tags;
        while (findMarkup()) {
            if (!startsTag())
                skipMarkup();
            else
                tags.push_back(readTag());
        }
        return tags;
    }

    std::optional<Span> openAt(size_t offset) {
        std::vector<Span> open;
        while (findMarkup() && at < offset) {
            if (!startsTag()) {
                if (startsWith("</") && !open.empty())
                    open.pop_back();
                skipMarkup();
                continue;
            }
            const Span name = readTag().name;
            if (text[at - 1] != '/')
                open.push_back(name);
        }
        return open.empty() ? std::nullopt : std::optional(open.back());
    }

private:
    bool findMarkup() { return (at = text.find('<', at)) != std::string_view::npos; }

    bool startsTag() const { return at + 1 < text.size() && startsName(text[at + 1]); }

    void skipMarkup() {
        if (startsWith("<!--"))
            skipBehind("-->");
        else if (startsWith("<![CDATA["))
            skipBehind("]]>");
        else
            skipBehind(">");
    }

    bool startsWith(std::string_view mark) const { return text.substr(at).starts_with(mark); }

    void skipBehind(std::string_view mark) {
        const size_t found = text.find(mark, at + 1);
        at = found == std::string_view::npos ? text.size() : found + mark.size();
    }

    bool atEnd() const { return at >= text.size(); }

    void skipSpace() {
        while (!atEnd() && isSpace(text[at]))
            ++at;
    }

    Span readName() {
        const size_t start = at;
        while (!atEnd() && continuesName(text[at]))
            ++at;
        return {start, at - start};
    }

    TagPlaces readTag() {
        ++at;
        TagPlaces tag{readName(), {}};
        for (skipSpace(); !atEnd() && text[at] != '>'; skipSpace()) {
            if (startsName(text[at]))
                tag.attributes.push_back(readAttribute());
            else
                ++at;
        }
        return tag;
    }

    TagPlaces::AttributePlaces readAttribute() {
        const Span name = readName();
        skipSpace();
        if (!atEnd() && text[at] == '=')
            ++at;
        skipSpace();
        return {name, readValue()};
    }

    Span readValue() {
        if (atEnd())
            return {at, 0};
        const char quote = text[at];
        if (quote == '"' || quote == '\'') {
            const size_t start = ++at;
            const size_t end = text.find(quote, start);
            at = end == std::string_view::npos ? text.size() : end + 1;
            return {start, (end == std::string_view::npos ? text.size() : end) - start};
        }
        const size_t start = at;
        while (!atEnd() && !isSpace(text[at]) && text[at] != '/' && text[at] != '>')
            ++at;
        return {start, at - start};
    }

    std::string_view text;
    size_t at = 0;
};

}  // namespace

std::vector<TagPlaces> scanTags(const std::string& text) {
    return TagScanner(text).scan();
}

std::optional<Span> openElementAt(const std::string& text, size_t offset) {
    return TagScanner(text).openAt(offset);
}
