#include <algorithm>
#include <cctype>
#include <iterator>
#include <string>
#include <string_view>

#include "author/check/Checks.h"

namespace {

/// What the XML declaration names as the encoding; of length 0 without one.
Span declaredEncoding(const std::string& text) {
    const size_t start = text.find("<?xml");
    const size_t end = text.find("?>", start);
    if (end == std::string::npos)
        return {};
    size_t at = text.find("encoding", start);
    if (at == std::string::npos || at > end)
        return {};
    at = text.find_first_of("\"'", at);
    if (at == std::string::npos || at > end)
        return {};
    return {at + 1, std::min(text.find(text[at], at + 1), end) - at - 1};
}

std::string inCapitals(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return name;
}

/// Whether XML has a meaning for this "&" and what follows it.
bool isReference(std::string_view rest) {
    constexpr std::string_view names[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};
    if (std::any_of(std::begin(names), std::end(names),
                    [&](std::string_view name) { return rest.starts_with(name); }))
        return true;
    const bool isHexadecimal = rest.starts_with("&#x");
    if (!isHexadecimal && !rest.starts_with("&#"))
        return false;
    const size_t start = isHexadecimal ? 3 : 2;
    const size_t end =
        rest.find_first_not_of(isHexadecimal ? "0123456789abcdefABCDEF" : "0123456789", start);
    return end > start && end < rest.size() && rest[end] == ';';
}

/// The parser takes marks that stand bare in a value; other tools give up there.
void checkBareMarks(const Checked& checked) {
    const std::string_view text = checked.model.text().bytes();
    for (const ElementNode& element : checked.model.elements())
        for (const AttributeNode& attribute : element.attributes) {
            const size_t end = attribute.valuePlace.offset + attribute.valuePlace.length;
            size_t at = attribute.valuePlace.offset;
            while (at < end &&
                   (text[at] == '&' ? isReference(text.substr(at, end - at)) : text[at] != '<'))
                ++at;
            if (at == end)
                continue;
            const bool isAmpersand = text[at] == '&';
            checked.report.tellOf(
                Fault::bareMark, {at, 1},
                std::wstring(L"A bare `") + (isAmpersand ? L"&" : L"<") +
                    L"` is refused by other XML tools.",
                std::wstring(L"write ") + (isAmpersand ? L"&amp;" : L"&lt;") + L" for it.");
        }
}

/// The first text beyond ASCII that a run can come to see.
const AttributeNode* firstBeyondAscii(const ScriptModel& model) {
    for (const ElementNode& element : model.elements())
        for (const AttributeNode& attribute : element.attributes)
            if (std::any_of(attribute.value.begin(), attribute.value.end(),
                            [](wchar_t letter) { return letter >= 0x80; }))
                return &attribute;
    return nullptr;
}

}  // namespace

// Texts in comments harm nobody, and what the declaration says matters only beyond ASCII.
void checkEncoding(const Checked& checked) {
    checkBareMarks(checked);
    const ScriptText& text = checked.model.text();
    const AttributeNode* first = text.isAscii() ? nullptr : firstBeyondAscii(checked.model);
    if (first == nullptr)
        return;
    const Span place = declaredEncoding(text.bytes());
    const std::string encoding = inCapitals(text.bytes().substr(place.offset, place.length));
    const bool hasMark = text.bytes().starts_with("\xEF\xBB\xBF");
    const bool declaresUtf8 = encoding == "UTF-8" || encoding == "UTF8" || hasMark;
    if (!declaresUtf8 && !encoding.empty())
        checked.report.tellOf(Fault::foreignEncoding, place,
                              L"The script declares " +
                                  inMarks(std::wstring(encoding.begin(), encoding.end())) +
                                  L", which no host looks at.",
                              L"save the script as UTF-8 and declare that.");
    if (!text.isUtf8())
        checked.report.tellOf(Fault::brokenUtf8, first->valuePlace,
                              L"This text isn't UTF-8: each machine reads it in its own code page.",
                              L"save the script as UTF-8.");
    else if (!declaresUtf8 && encoding.empty())
        checked.report.tellOf(Fault::undeclaredText, first->valuePlace,
                              L"This text isn't ASCII, and the script declares no encoding.",
                              L"declare encoding=\"UTF-8\" in the first line.");
}
