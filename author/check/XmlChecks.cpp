#include "author/check/XmlChecks.h"

#include <tinyxml.h>

#include <algorithm>
#include <set>

#include "author/check/Report.h"
#include "author/check/ScriptText.h"
#include "author/check/TagScanner.h"
#include "elements/XmlBounds.h"
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

std::wstring quoted(const std::string& text, Span name) {
    const std::string_view part = std::string_view(text).substr(name.offset, name.length);
    return inMarks(std::wstring(part.begin(), part.end()));
}

/// Which element is to be closed where the parser has come upon another end tag.
std::wstring openElementHelp(const ScriptText& script, size_t offset) {
    const std::optional<Span> open = openElementAt(script.bytes(), offset);
    if (!open)
        return {};
    return L"close the " + quoted(script.bytes(), *open) + L" of line " +
           std::to_wstring(script.lineNumberOf(*open)) + L" in front of this.";
}

/// Which attribute of the tag up to there stands there once more.
std::wstring doubledAttributeHelp(const ScriptText& script, size_t offset) {
    const std::string& text = script.bytes();
    const size_t start = text.rfind('<', offset);
    const size_t end = text.find('>', offset);
    if (start == std::string::npos)
        return {};
    const std::vector<TagPlaces> tags = scanTags(text.substr(start, end - start));
    if (tags.empty())
        return {};
    const auto nameOf = [&](const TagPlaces::AttributePlaces& attribute) {
        return text.substr(start + attribute.name.offset, attribute.name.length);
    };
    std::set<std::string> names;
    for (const TagPlaces::AttributePlaces& attribute : tags.front().attributes)
        if (!names.insert(nameOf(attribute)).second)
            return quoted(text, {start + attribute.name.offset, attribute.name.length}) +
                   L" stands there twice: leave one out.";
    return {};
}

/// The start of a comment without an end. The parser takes all behind it for its own, or tells the
/// start of the script.
std::optional<Span> openComment(const std::string& text) {
    constexpr std::string_view start = "<!--";
    const size_t at = text.rfind(start);
    if (at == std::string::npos || text.find("-->", at) != std::string::npos)
        return {};
    return Span{at, start.size()};
}

std::wstring helpWith(int error, const ScriptText& script, size_t offset) {
    if (script.isCutShort())
        return cutShortHelp;
    switch (error) {
        case TiXmlBase::TIXML_ERROR_READING_END_TAG:
            return openElementHelp(script, offset);
        case TiXmlBase::TIXML_ERROR_READING_ATTRIBUTES:
        case TiXmlBase::TIXML_ERROR_READING_ELEMENT_VALUE:
            return L"look for a missing quotation mark, a missing end tag, or a bare < or &.";
        case TiXmlBase::TIXML_ERROR_PARSING_ELEMENT:
            return doubledAttributeHelp(script, offset);
        case TiXmlBase::TIXML_ERROR_DOCUMENT_EMPTY:
            return L"the script needs a root element.";
        default:
            return {};
    }
}

/// Tells of the element at an offset that the engine wouldn't let the parser come to.
void tellExcess(const XmlExcess& excess, size_t offset, const std::string& text, Report& report) {
    const size_t end = std::min(text.find_first_of(" \t\n/>", offset), text.size());
    const Span place{offset, end - offset};
    if (excess.bound == XmlExcess::depth)
        report.tellOf(Fault::nestedTooDeep, place,
                      L"Elements are nested more than " + std::to_wstring(maxElementDepth) +
                          L" deep, the root included.",
                      L"define the inner parts elsewhere and refer to them.");
    else
        report.tellOf(
            Fault::tooManyAttributes, place,
            L"The element has more than " + std::to_wstring(maxElementAttributes) + L" attributes.",
            L"remove those that are never read.");
}

}  // namespace

bool parseScript(const ScriptText& script, TiXmlDocument& document, Report& report) {
    const std::string& text = script.bytes();
    // A character of UTF-8 that is cut off at the end leads the parser up to three bytes beyond it.
    const std::string padded = text + std::string(3, '\0');
    if (const std::optional<XmlExcess> excess = findExcess(padded.c_str())) {
        tellExcess(*excess, static_cast<size_t>(excess->element - padded.c_str()), text, report);
        return false;
    }
    document.SetTabSize(1);  // so that a tab is one column, as any other character
    document.Parse(padded.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    if (document.RootElement() && !document.Error())
        return true;
    if (const std::optional<Span> comment = openComment(text)) {
        report.tellOf(Fault::notXml, *comment,
                      L"The script isn't well-formed XML: this comment has no end.",
                      L"end it by -->.");
        return false;
    }
    if (!document.Error())
        return true;
    const Span place =
        script.spanAt(static_cast<size_t>(document.ErrorRow()),
                      static_cast<size_t>(document.ErrorCol()), countsUtf8(document, text));
    report.tellOf(
        Fault::notXml, place,
        L"The script isn't well-formed XML: the parser says \"" + reasonOf(document) + L"\"",
        helpWith(document.ErrorId(), script, place.offset));
    return false;
}
