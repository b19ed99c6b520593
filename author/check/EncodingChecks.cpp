#include <algorithm>
#include <cctype>
#include <string>

#include "author/check/Checks.h"

namespace {

/// The encoding that the XML declaration names, in capitals; empty without one.
std::string declaredEncoding(const std::string& text) {
    const size_t start = text.find("<?xml");
    const size_t end = text.find("?>", start);
    if (start == std::string::npos || end == std::string::npos)
        return {};
    size_t at = text.find("encoding", start);
    if (at == std::string::npos || at > end)
        return {};
    at = text.find_first_of("\"'", at);
    if (at == std::string::npos || at > end)
        return {};
    std::string name = text.substr(at + 1, text.find(text[at], at + 1) - at - 1);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return name;
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
    const ScriptText& text = checked.model.text();
    const AttributeNode* first = text.isAscii() ? nullptr : firstBeyondAscii(checked.model);
    if (first == nullptr)
        return;
    const std::string encoding = declaredEncoding(text.bytes());
    const bool hasMark = text.bytes().starts_with("\xEF\xBB\xBF");
    const bool declaresUtf8 = encoding == "UTF-8" || encoding == "UTF8" || hasMark;
    if (!declaresUtf8 && !encoding.empty())
        checked.report.tellOf(Fault::foreignEncoding, first->valuePlace,
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
