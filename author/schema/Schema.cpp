#include "author/schema/Schema.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "author/Markup.h"
#include "author/schema/AttributeWords.h"
#include "author/schema/ElementTexts.h"
#include "author/schema/ScriptGrammar.h"
#include "elements/Vocabulary.h"

namespace {

constexpr wchar_t referenceType[] = L"TextWithReference";

/// XML text, indented by its depth.
class XmlText {
public:
    using Attributes = std::initializer_list<std::pair<const wchar_t*, std::wstring>>;

    void open(const wchar_t* name, Attributes attributes = {}) {
        line(tag(name, attributes) + L">");
        names.emplace_back(name);
    }
    void close() {
        const std::wstring name = names.back();
        names.pop_back();
        line(L"</xs:" + name + L">");
    }
    void empty(const wchar_t* name, Attributes attributes) { line(tag(name, attributes) + L"/>"); }
    void element(const wchar_t* name, const std::wstring& text) {
        line(tag(name, {}) + L">" + escapedForMarkup(text) + L"</xs:" + name + L">");
    }
    void line(const std::wstring& content) {
        text.append(2 * names.size(), L' ').append(content).append(L"\n");
    }

    std::wstring text;

private:
    static std::wstring tag(const std::wstring& name, Attributes attributes) {
        std::wstring text = L"<xs:" + name;
        for (const auto& [attribute, value] : attributes)
            text += std::wstring(L" ") + attribute + L"=\"" + escapedForMarkup(value) + L"\"";
        return text;
    }

    std::vector<std::wstring> names;
};

/// Markdown without its links, which lead nowhere from where this is read: "[text](target)".
std::wstring withoutLinks(std::wstring markdown) {
    for (size_t middle; (middle = markdown.find(L"](")) != std::wstring::npos;) {
        markdown.erase(middle, markdown.find(L')', middle) + 1 - middle);
        markdown.erase(markdown.rfind(L'[', middle), 1);
    }
    return markdown;
}

void writeDocumentation(XmlText& xml, const std::wstring& element,
                        const std::wstring& attribute = {}) {
    xml.open(L"annotation");
    xml.element(L"documentation", withoutLinks(textOf(element, attribute)));
    xml.close();
}

void writeAttribute(XmlText& xml, const std::wstring& element,
                    const ElementShape::Attribute& attribute) {
    const WordList* words = wordsOf(element, attribute.name);
    xml.open(L"attribute", {{L"name", attribute.name},
                            {L"type", words ? words->name : L"xs:string"},
                            {L"use", attribute.required ? L"required" : L"optional"}});
    writeDocumentation(xml, element, attribute.name);
    xml.close();
}

void writeChoice(XmlText& xml, const ElementShape& shape) {
    xml.open(L"choice", {{L"minOccurs", L"0"}, {L"maxOccurs", L"unbounded"}});
    for (const ElementShape::Child& child : shape.children)
        if (!child.once)
            xml.empty(L"element", {{L"name", child.name}, {L"type", child.shape}});
    xml.close();
}

/// What must be there once may have the rest in front of it and behind it.
void writeChildren(XmlText& xml, const ElementShape& shape) {
    if (shape.children.empty())
        return;
    const auto once = std::find_if(shape.children.begin(), shape.children.end(),
                                   [](const ElementShape::Child& child) { return child.once; });
    if (once == shape.children.end())
        return writeChoice(xml, shape);
    xml.open(L"sequence");
    writeChoice(xml, shape);
    xml.empty(L"element", {{L"name", once->name}, {L"type", once->shape}});
    writeChoice(xml, shape);
    xml.close();
}

void writeShape(XmlText& xml, const ElementShape& shape) {
    xml.open(L"complexType", {{L"name", shape.name}});
    writeDocumentation(xml, shape.element);
    writeChildren(xml, shape);
    for (const ElementShape::Attribute& attribute : shape.attributes)
        writeAttribute(xml, shape.element, attribute);
    xml.close();
}

void writeEnumeration(XmlText& xml, const WordList& list) {
    xml.open(L"restriction", {{L"base", L"xs:string"}});
    for (const wchar_t* word : list.words())
        xml.empty(L"enumeration", {{L"value", word}});
    xml.close();
}

/// The engine replaces references in all texts but those of variables.
bool isForVariables(const WordList& list) {
    return &list == wordsOf(variableKind.name, L"Type");
}

void writeWords(XmlText& xml, const WordList& list) {
    xml.open(L"simpleType", {{L"name", list.name}});
    if (isForVariables(list)) {
        writeEnumeration(xml, list);
    } else {
        xml.open(L"union", {{L"memberTypes", referenceType}});
        xml.open(L"simpleType");
        writeEnumeration(xml, list);
        xml.close();
        xml.close();
    }
    xml.close();
}

void writeReferenceType(XmlText& xml) {
    xml.open(L"simpleType", {{L"name", referenceType}});
    xml.open(L"annotation");
    xml.element(L"documentation",
                L"[id], the path of a directory, or #NAME, the text of a "
                L"variable, with other text around it or without.");
    xml.close();
    xml.open(L"restriction", {{L"base", L"xs:string"}});
    xml.empty(L"pattern", {{L"value", L"[^#\\[]*[#\\[].*"}});
    xml.close();
    xml.close();
}

}  // namespace

std::wstring scriptSchema() {
    XmlText xml;
    xml.line(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    xml.open(L"schema", {{L"xmlns:xs", L"http://www.w3.org/2001/XMLSchema"}});
    xml.empty(L"element", {{L"name", rootElement}, {L"type", rootElement}});
    for (const ElementShape& shape : scriptShapes())
        writeShape(xml, shape);
    for (const WordList* list : wordLists())
        writeWords(xml, *list);
    writeReferenceType(xml);
    xml.close();
    return xml.text;
}
