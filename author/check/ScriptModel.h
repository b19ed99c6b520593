#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "author/check/ScriptText.h"
#include "elements/Vocabulary.h"

class TiXmlDocument;

/// An attribute of an element, with its places in the text.
struct AttributeNode {
    std::wstring name;
    std::wstring value;
    Span namePlace;
    Span valuePlace;  ///< without its quotation marks
};

/// The number of an element in document order.
using ElementNumber = size_t;
inline constexpr ElementNumber noElement = static_cast<ElementNumber>(-1);

/// An element of a script, whether the engine knows it or not.
struct ElementNode {
    std::wstring name;
    const ElementKind* kind = nullptr;         ///< null for a reference and for an unknown name
    const ReferenceKind* reference = nullptr;  ///< null for anything but a reference
    ElementNumber parent = noElement;
    ElementNumber firstChild = noElement;
    ElementNumber nextSibling = noElement;
    ElementNumber end = noElement;  ///< the number behind the last element in it
    Span place;                     ///< of the "<" and its name
    std::vector<AttributeNode> attributes;

    /// Null when there is none.
    const AttributeNode* find(std::wstring_view attributeName) const;
    /// The value of `Id`, empty when there is none.
    std::wstring_view id() const;
    bool is(const ElementKind& wanted) const { return kind == &wanted; }
};

/// A script as the engine would find it: its elements in document order, and what their ids lead
/// to.
class ScriptModel {
public:
    ScriptModel(const ScriptText& text, const TiXmlDocument& document);

    const ScriptText& text() const { return script; }
    const std::vector<ElementNode>& elements() const { return nodes; }
    const ElementNode& operator[](ElementNumber number) const { return nodes[number]; }

    /// The first `Product` in the root element, and the first sequence in that; noElement if there
    /// is none.
    ElementNumber product() const { return productNumber; }
    ElementNumber sequence() const { return sequenceNumber; }
    bool isRoot(ElementNumber number) const { return number == 0; }
    /// Whether `number` is `outer` or stands in it.
    bool isWithin(ElementNumber number, ElementNumber outer) const {
        return outer != noElement && number >= outer && number < nodes[outer].end;
    }

    /// The first element of that kind and id below the product; noElement if there is none.
    ElementNumber find(const ElementKind& kind, std::wstring_view id) const;

    /// All ids of a kind, for suggestions.
    const std::vector<std::wstring_view>& idsOf(const ElementKind& kind) const;

    /// The place of a part of an attribute's value, counted in characters of the value.
    Span spanIn(const AttributeNode& attribute, size_t from, size_t length) const;

private:
    void add(const TiXmlDocument& document);
    void place();
    void index();

    const ScriptText& script;
    std::vector<ElementNode> nodes;
    ElementNumber productNumber = noElement;
    ElementNumber sequenceNumber = noElement;
    std::unordered_map<std::wstring, ElementNumber> ids;
    mutable std::unordered_map<const ElementKind*, std::vector<std::wstring_view>> idsOfKind;
};

/// The kind, or the reference, that a name stands for; both null for an unknown one.
struct KnownName {
    const ElementKind* kind = nullptr;
    const ReferenceKind* reference = nullptr;
};
KnownName knownName(const std::wstring& name);

/// All names of elements that the engine knows.
std::vector<const wchar_t*> allElementNames();
