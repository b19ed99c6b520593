#include "author/check/ScriptModel.h"

#include <tinyxml.h>

#include <algorithm>
#include <cwchar>

#include "author/check/TagScanner.h"
#include "system/TextConversion.h"

namespace {

std::wstring wideOf(const char* text) {
    const WideText wide = toWideText(text);
    return wide ? wide.get() : L"";
}

using KnownNames = std::unordered_map<std::wstring, KnownName>;

const KnownNames& knownNames() {
    static const KnownNames names = [] {
        KnownNames table;
        for (const auto kinds : {motionKinds(), lookedUpKinds()})
            for (const ElementKind* kind : kinds)
                table[kind->name].kind = kind;
        for (const ReferenceKind& reference : motionReferences())
            table[reference.name].reference = &reference;
        table[directoryReference.name].reference = &directoryReference;
        return table;
    }();
    return names;
}

std::wstring keyOf(const wchar_t* name, std::wstring_view id) {
    std::wstring key = name;
    key += L'\0';
    return key += id;
}

/// No reference to a character is longer.
constexpr size_t longestReference = 12;

/// The bytes of a value that the parser takes as one: a reference, or a character.
size_t unitLength(std::string_view rest) {
    if (rest.front() == '&') {
        const size_t end = rest.find(';');
        if (end < longestReference)
            return end + 1;
    }
    return std::min(utf8Length(rest.front()), rest.size());
}

size_t wideLength(std::string_view unit) {
    if (unit.front() == '&')
        return 1;
    return std::max<size_t>(1, wideOf(std::string(unit).c_str()).size());
}

}  // namespace

KnownName knownName(const std::wstring& name) {
    const auto found = knownNames().find(name);
    return found == knownNames().end() ? KnownName{} : found->second;
}

std::vector<const wchar_t*> allElementNames() {
    std::vector<const wchar_t*> names;
    for (const auto& [name, known] : knownNames())
        names.push_back(name.c_str());
    std::sort(names.begin(), names.end(),
              [](const wchar_t* a, const wchar_t* b) { return wcscmp(a, b) < 0; });
    return names;
}

const AttributeNode* ElementNode::find(std::wstring_view attributeName) const {
    const auto found =
        std::find_if(attributes.begin(), attributes.end(),
                     [&](const AttributeNode& node) { return node.name == attributeName; });
    return found == attributes.end() ? nullptr : &*found;
}

std::wstring_view ElementNode::id() const {
    const AttributeNode* attribute = find(idAttribute);
    return attribute ? std::wstring_view(attribute->value) : std::wstring_view();
}

ScriptModel::ScriptModel(const ScriptText& text, const TiXmlDocument& document) : script(text) {
    add(document);
    place();
    index();
}

// Nesting is bounded, but a loop needs no bound.
void ScriptModel::add(const TiXmlDocument& document) {
    ElementNumber parent = noElement;
    std::vector<ElementNumber> lastChild;  // of each open element
    const TiXmlElement* next = document.FirstChildElement();
    while (next) {
        const ElementNumber number = nodes.size();
        ElementNode& node = nodes.emplace_back();
        node.name = wideOf(next->Value());
        const KnownName known = knownName(node.name);
        node.kind = known.kind;
        node.reference = known.reference;
        node.parent = parent;
        for (const TiXmlAttribute* attribute = next->FirstAttribute(); attribute;
             attribute = attribute->Next())
            node.attributes.push_back(
                {wideOf(attribute->Name()), wideOf(attribute->Value()), {}, {}});
        if (!lastChild.empty()) {
            if (lastChild.back() == noElement)
                nodes[parent].firstChild = number;
            else
                nodes[lastChild.back()].nextSibling = number;
            lastChild.back() = number;
        }

        if (const TiXmlElement* child = next->FirstChildElement()) {
            parent = number;
            lastChild.push_back(noElement);
            next = child;
            continue;
        }
        nodes[number].end = number + 1;
        const TiXmlElement* sibling = next->NextSiblingElement();
        while (!sibling && parent != noElement) {
            next = next->Parent()->ToElement();
            nodes[parent].end = nodes.size();
            parent = nodes[parent].parent;
            lastChild.pop_back();
            sibling = next->NextSiblingElement();
        }
        next = sibling;
    }
}

// The scanner finds the elements in the parser's order. Should they differ all the same, what
// follows has no place rather than a wrong one.
void ScriptModel::place() {
    const std::vector<TagPlaces> tags = scanTags(script.bytes());
    const size_t count = std::min(tags.size(), nodes.size());
    for (ElementNumber number = 0; number < count; ++number) {
        ElementNode& node = nodes[number];
        const TagPlaces& tag = tags[number];
        if (tag.attributes.size() != node.attributes.size())
            return;
        node.place = {tag.name.offset - 1, tag.name.length + 1};  // with its "<"
        for (size_t i = 0; i < tag.attributes.size(); ++i) {
            node.attributes[i].namePlace = tag.attributes[i].name;
            node.attributes[i].valuePlace = tag.attributes[i].value;
        }
    }
}

void ScriptModel::index() {
    if (nodes.empty())
        return;
    const auto firstChild = [this](ElementNumber parent, const ElementKind& kind) {
        ElementNumber child = nodes[parent].firstChild;
        while (child != noElement && !nodes[child].is(kind))
            child = nodes[child].nextSibling;
        return child;
    };
    productNumber = firstChild(0, productKind);
    if (productNumber == noElement)
        return;
    sequenceNumber = firstChild(productNumber, installKind);
    for (ElementNumber number = productNumber + 1; number < nodes[productNumber].end; ++number)
        if (nodes[number].kind && nodes[number].find(idAttribute))
            ids.try_emplace(keyOf(nodes[number].kind->name, nodes[number].id()), number);
}

ElementNumber ScriptModel::find(const ElementKind& kind, std::wstring_view id) const {
    const auto found = ids.find(keyOf(kind.name, id));
    return found == ids.end() ? noElement : found->second;
}

const std::vector<std::wstring_view>& ScriptModel::idsOf(const ElementKind& kind) const {
    const auto [entry, isNew] = idsOfKind.try_emplace(&kind);
    if (isNew)
        for (const ElementNode& element : nodes)
            if (element.is(kind))
                entry->second.push_back(element.id());
    return entry->second;
}

Span ScriptModel::spanIn(const AttributeNode& attribute, size_t from, size_t length) const {
    const std::string_view raw =
        std::string_view(script.bytes())
            .substr(attribute.valuePlace.offset, attribute.valuePlace.length);
    size_t characters = 0;
    size_t start = raw.size();
    size_t end = raw.size();
    for (size_t at = 0; at < raw.size();) {
        if (characters >= from)
            start = std::min(start, at);
        if (characters >= from + length) {
            end = at;
            break;
        }
        const size_t unit = unitLength(raw.substr(at));
        characters += wideLength(raw.substr(at, unit));
        at += unit;
    }
    return {attribute.valuePlace.offset + start, end - start};
}
