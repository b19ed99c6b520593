#include "elements/raw_installerXML.h"

#include <tinyxml.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <new>

#include "elements/XmlBounds.h"
#include "system/Exhaustion.h"

struct XmlDocument : TiXmlDocument {};

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

/// The one way from a node of the parser to a handle.
XmlHandle handleOf(const TiXmlNode* node) {
    // The parser hands out const nodes of a const document; a handle may be used to set attributes.
    return {const_cast<TiXmlNode*>(node)};
}

XmlHandlePtr onHeap(XmlHandle handle) {
    return XmlHandlePtr(handle ? new (std::nothrow) XmlHandle(handle) : nullptr);
}

XmlHandle valueOf(const XmlHandle* handle) {
    return handle ? *handle : XmlHandle();
}

TiXmlElement* elementOf(XmlHandle handle) {
    return handle ? handle.node->ToElement() : nullptr;
}

/// Whether bytes of the document are a text in ASCII.
bool isAscii(const char* bytes, const wchar_t* ascii) {
    while (*bytes && static_cast<wchar_t>(*bytes) == *ascii) {
        ++bytes;
        ++ascii;
    }
    return *bytes == '\0' && *ascii == L'\0';
}

/// The value of an attribute, whose name may have any characters; null when there is none.
const char* findAttributeOfAnyName(XmlHandle handle, const wchar_t* attributeName) {
    const NarrowText name = toNarrowText(attributeName);
    const TiXmlElement* element = elementOf(handle);
    return name && element ? element->Attribute(name.get()) : nullptr;
}

bool hasNameAndAttribute(const XmlHandle& handle, const wchar_t* elementName,
                         const wchar_t* attributeName, const wchar_t* attributeValue) {
    const WideText name = getElementName(&handle);
    std::wstring value;
    return name && wcscmp(name.get(), elementName) == 0 &&
           getAttributeText(&handle, attributeName, value) && value == attributeValue;
}

/// A character of UTF-8 that is cut off at the end of a text leads the parser up to three bytes
/// beyond it: it must find more NULs there.
constexpr size_t nulsBehindText = 3;

/// The bytes of a file; none when it can't be read. There is room for the NULs.
std::string readAll(std::FILE* file) {
    std::fseek(file, 0, SEEK_END);
    const long size = std::ftell(file);
    if (size <= 0)
        return {};
    std::rewind(file);
    std::string bytes;
    bytes.reserve(static_cast<size_t>(size) + nulsBehindText);
    bytes.resize(static_cast<size_t>(size));
    if (std::fread(bytes.data(), bytes.size(), 1, file) != 1)
        return {};
    return bytes;
}

/// Every end of a line becomes a line feed, as XML demands it of a file.
std::string withLineFeeds(std::string text) {
    const auto isReturn = [](char character) { return character == '\r'; };
    auto end = std::find_if(text.begin(), text.end(), isReturn);
    for (auto next = end; next != text.end(); ++next) {
        const bool isPair = isReturn(*next) && next + 1 != text.end() && next[1] == '\n';
        *end++ = isReturn(*next) ? '\n' : *next;
        if (isPair)
            ++next;
    }
    text.erase(end, text.end());
    return text;
}

/// Parses the very text that was tested for its bounds, which ends at the first NUL.
bool parse(XmlDocument& document, std::string text) {
    document.Clear();
    text.resize(std::strlen(text.c_str()));
    text.append(nulsBehindText, '\0');
    if (findExcess(text.c_str()))
        return false;
    document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    return !document.Error();
}

}  // namespace

void XmlDocumentDeleter::operator()(XmlDocument* document) const {
    std::default_delete<XmlDocument>()(document);
}

XmlDocumentPtr makeDocument() {
    return nullIfExhausted([] { return XmlDocumentPtr(new XmlDocument); });
}

XmlDocumentPtr openDocument(const wchar_t* fileName) {
    XmlDocumentPtr document = makeDocument();
    if (!document || !loadDocument(*document, fileName))
        return nullptr;
    return document;
}

bool loadDocument(XmlDocument& document, const wchar_t* fileName) try {
    const NarrowText name = toNarrowText(fileName);
    if (!name)
        return false;
    const FilePtr file(std::fopen(name.get(), "rb"));
    return file && parse(document, withLineFeeds(readAll(file.get())));
} catch (const std::bad_alloc&) {
    return false;
}

bool parseDocument(XmlDocument& document, const wchar_t* text) try {
    const NarrowText narrow = toNarrowText(text);
    return narrow && parse(document, narrow.get());
} catch (const std::bad_alloc&) {
    return false;
}

bool saveDocument(const XmlDocument& document, const wchar_t* fileName) {
    const NarrowText name = toNarrowText(fileName);
    return name && document.SaveFile(name.get());
}

XmlHandlePtr copyHandle(const XmlHandle& handle) {
    return XmlHandlePtr(new (std::nothrow) XmlHandle(handle));
}

XmlHandle rootElementOf(const XmlDocument& document) {
    return handleOf(document.FirstChildElement());
}

XmlHandle firstChildOf(XmlHandle handle) {
    return handleOf(handle ? handle.node->FirstChildElement() : nullptr);
}

XmlHandle firstChildOf(XmlHandle handle, const wchar_t* name) {
    XmlHandle child = firstChildOf(handle);
    while (child && !isAscii(elementNameOf(child), name))
        child = nextSiblingOf(child);
    return child;
}

XmlHandle nextSiblingOf(XmlHandle handle) {
    return handleOf(handle ? handle.node->NextSiblingElement() : nullptr);
}

XmlHandle parentOf(XmlHandle handle) {
    return handleOf(handle ? handle.node->Parent() : nullptr);
}

const char* elementNameOf(XmlHandle handle) {
    const TiXmlElement* element = elementOf(handle);
    return element ? element->Value() : nullptr;
}

const char* attributeOf(XmlHandle handle, const wchar_t* attributeName) {
    const TiXmlElement* element = elementOf(handle);
    const TiXmlAttribute* attribute = element ? element->FirstAttribute() : nullptr;
    while (attribute && !isAscii(attribute->Name(), attributeName))
        attribute = attribute->Next();
    return attribute ? attribute->Value() : nullptr;
}

XmlHandlePtr getRootElement(const XmlDocument& document) {
    return onHeap(rootElementOf(document));
}

XmlHandlePtr getFirstChildElement(const XmlHandle* handle) {
    return onHeap(firstChildOf(valueOf(handle)));
}

XmlHandlePtr getFirstChildElementNamed(const XmlHandle* handle, const wchar_t* name) {
    const NarrowText narrow = toNarrowText(name);
    const XmlHandle above = valueOf(handle);
    return onHeap(
        handleOf(narrow && above ? above.node->FirstChildElement(narrow.get()) : nullptr));
}

XmlHandlePtr getNextSiblingElement(const XmlHandle* handle) {
    return onHeap(nextSiblingOf(valueOf(handle)));
}

XmlHandlePtr getNextSiblingElementNamed(const XmlHandle* handle, const wchar_t* name) {
    const NarrowText narrow = toNarrowText(name);
    const XmlHandle from = valueOf(handle);
    return onHeap(handleOf(narrow && from ? from.node->NextSiblingElement(narrow.get()) : nullptr));
}

size_t countChildElements(const XmlHandle* handle) {
    size_t count = 0;
    for (XmlHandle child = firstChildOf(valueOf(handle)); child; child = nextSiblingOf(child))
        ++count;
    return count;
}

XmlHandlePtr getParentNode(const XmlHandle* handle) {
    return onHeap(parentOf(valueOf(handle)));
}

XmlHandlePtr asElement(const XmlHandle* handle) {
    return onHeap(handleOf(elementOf(valueOf(handle))));
}

WideText getElementName(const XmlHandle* handle) {
    return toWideText(elementNameOf(valueOf(handle)));
}

uint32_t getElementLine(const XmlHandle* handle) {
    const TiXmlElement* element = elementOf(valueOf(handle));
    return element ? static_cast<uint32_t>(element->Row()) : 0;
}

void getNodeName(const XmlHandle* handle, std::wstring& name) {
    const XmlHandle named = valueOf(handle);
    if (const WideText wide = named ? toWideText(named.node->Value()) : nullptr)
        name = wide.get();
}

bool getAttributeText(const XmlHandle* handle, const wchar_t* attributeName, std::wstring& value) {
    value.clear();
    const char* narrow = findAttributeOfAnyName(valueOf(handle), attributeName);
    if (narrow == nullptr)
        return false;
    if (const WideText wide = toWideText(narrow))
        value = wide.get();
    return true;
}

WideText getAttributeCopy(const wchar_t* attributeName, const XmlHandle* handle) {
    return toWideText(findAttributeOfAnyName(valueOf(handle), attributeName));
}

bool setAttributeText(const XmlHandle* handle, const wchar_t* attributeName, const wchar_t* value) {
    const NarrowText name = toNarrowText(attributeName);
    const NarrowText narrow = toNarrowText(value);
    TiXmlElement* element = elementOf(valueOf(handle));
    if (!name || !narrow || !element)
        return false;
    element->SetAttribute(name.get(), narrow.get());
    return true;
}

XmlHandlePtr findElementRecursive(const wchar_t* elementName, const wchar_t* attributeName,
                                  const wchar_t* attributeValue, const XmlHandle* start) {
    if (!elementName || !attributeName || !attributeValue || !start)
        return nullptr;
    for (XmlHandlePtr child = getFirstChildElement(start); child;
         child = getNextSiblingElement(child.get())) {
        if (hasNameAndAttribute(*child, elementName, attributeName, attributeValue))
            return child;
        if (XmlHandlePtr found =
                findElementRecursive(elementName, attributeName, attributeValue, child.get()))
            return found;
    }
    return nullptr;
}

void visitElements(XmlHandle start, const std::function<void(XmlHandle)>& visit) {
    for (XmlHandle child = firstChildOf(start); child; child = nextSiblingOf(child)) {
        visit(child);
        visitElements(child, visit);
    }
}

XmlHandlePtr findChildByAttribute(const wchar_t* elementName, const wchar_t* attributeName,
                                  const wchar_t* attributeValue, const XmlHandle* parent) {
    if (!elementName || !attributeName || !attributeValue || !parent)
        return nullptr;
    for (XmlHandlePtr child = getFirstChildElement(parent); child;
         child = getNextSiblingElement(child.get()))
        if (hasNameAndAttribute(*child, elementName, attributeName, attributeValue))
            return child;
    return nullptr;
}
