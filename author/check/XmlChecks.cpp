#include "author/check/XmlChecks.h"

#include <tinyxml.h>

#include "author/check/Report.h"
#include "author/check/ScriptText.h"
#include "elements/XmlNesting.h"
#include "elements/raw_installerXML.h"

namespace {

/// How the parser counts the columns of its places: in characters of UTF-8 once it has taken the
/// text for that.
bool countsUtf8(const TiXmlDocument& document, const std::string& text) {
    if (text.starts_with("\xEF\xBB\xBF"))
        return true;
    const TiXmlNode* first = document.FirstChild();
    const TiXmlDeclaration* declaration = first ? first->ToDeclaration() : nullptr;
    if (declaration == nullptr)
        return false;
    const std::string encoding = declaration->Encoding();
    return encoding.empty() || _strnicmp(encoding.c_str(), "UTF-8", 5) == 0 ||
           _strnicmp(encoding.c_str(), "UTF8", 4) == 0;
}

std::wstring reasonOf(const TiXmlDocument& document) {
    std::wstring reason;
    for (const char* letter = document.ErrorDesc(); *letter; ++letter)
        reason += static_cast<wchar_t>(*letter);
    return reason;
}

std::wstring helpWith(int error) {
    switch (error) {
        case TiXmlBase::TIXML_ERROR_READING_END_TAG:
            return L"close each element in the order in which they were opened, by its own name.";
        case TiXmlBase::TIXML_ERROR_READING_ATTRIBUTES:
        case TiXmlBase::TIXML_ERROR_READING_ELEMENT_VALUE:
            return L"look for a missing quotation mark, a missing end tag, or a bare < or &.";
        case TiXmlBase::TIXML_ERROR_PARSING_ELEMENT:
            return L"look for an attribute that stands twice, or a name that is missing.";
        case TiXmlBase::TIXML_ERROR_DOCUMENT_EMPTY:
            return L"the script needs a root element.";
        default:
            return {};
    }
}

}  // namespace

bool parseScript(const ScriptText& script, TiXmlDocument& document, Report& report) {
    const std::string& text = script.bytes();
    // A character of UTF-8 that is cut off at the end leads the parser up to three bytes beyond it.
    const std::string padded = text + std::string(3, '\0');
    if (!isNestedWithin(padded.c_str(), maxElementDepth)) {
        report.tellOfFile(Fault::nestedTooDeep,
                          L"Elements are nested more than " + std::to_wstring(maxElementDepth) +
                              L" deep, the root included.",
                          L"define the inner parts elsewhere and refer to them.");
        return false;
    }
    document.SetTabSize(1);  // so that a tab is one column, as any other character
    document.Parse(padded.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    if (!document.Error())
        return true;
    const Span place =
        script.spanAt(static_cast<size_t>(document.ErrorRow()),
                      static_cast<size_t>(document.ErrorCol()), countsUtf8(document, text));
    report.tellOf(
        Fault::notXml, place,
        L"The script isn't well-formed XML: the parser says \"" + reasonOf(document) + L"\"",
        helpWith(document.ErrorId()));
    return false;
}
