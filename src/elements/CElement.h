#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "elements/Vocabulary.h"
#include "elements/raw_installerXML.h"
#include "system/BaseOwner.h"

class CContext;
class CElement;

using ElementPtr = BaseOwner<CElement>;

/// One resolved attribute. It is large: making an element can need others in turn, so where
/// elements are made none stands on the stack.
struct AttributeRecord {
    wchar_t name[256] = {};
    std::wstring value;
};

/// Fills a record. A null pointer is told in the log; then it ends the process, as a name of 256
/// characters or more does.
void fillAttributeRecord(AttributeRecord& record, const wchar_t* name, const wchar_t* valueText);

/// The base of everything that an XML element of a script becomes: its name and id, its resolved
/// attributes, and the link to its parent.
///
/// Attributes are settled once, while the element is made: readDeclaredAttributes takes what stands
/// in its own XML, resolveDerivedAttributes what only an enclosing element has. Afterwards only the
/// finished texts are asked for. Failures are thrown or handed back as a finished message.
class CElement {
public:
    /// The element of the node `source`. Throws a message when the node has no name.
    CElement(const XmlHandle& source, CContext& context, const ElementKind& kind = noKind);

    /// The element that a reference means: the first below the product with this name and `Id`.
    /// Throws a message when there is none.
    CElement(const wchar_t* elementName, const wchar_t* elementId, CContext& context,
             const ElementKind& kind = noKind);

    CElement(const CElement&) = delete;
    CElement& operator=(const CElement&) = delete;
    ~CElement();

    /// Whether references in attribute texts are replaced by their values.
    virtual bool isExpandable() const { return true; }
    /// Whether an attribute's text is joined with the parent's.
    virtual bool isCumulativeAttribute(const wchar_t* attributeName) const;
    /// Joins a cumulative attribute's text with the parent's. The result is ignored.
    virtual bool combineWithParent(const std::wstring& parentValue, std::wstring& value) const;
    /// The attributes that are read from the element's own XML.
    virtual void getAttributes(std::vector<AttributeDeclaration>& list) const final;
    /// The attributes that are made up, or taken from the parent, when they aren't there yet.
    virtual void getDerivedAttributes(std::vector<AttributeDeclaration>& list) const final;
    /// Makes up a derived attribute; false when the element has no default for it.
    virtual bool getDefaultAttribute(AttributeRecord& record, const wchar_t* attributeName) const;
    /// Copies the attribute of that name; false when the element has none.
    virtual bool getAttribute(const wchar_t* attributeName, AttributeRecord& record) const final;

    /// The text of the attribute of that name, where it stands; null when the element has none.
    const std::wstring* find(const wchar_t* attributeName) const;

    /// As the script spells them; the id is empty where there is none.
    const wchar_t* getName() const { return name; }
    const wchar_t* getId() const { return id; }
    /// Stays the element's.
    const XmlHandle* getNode() const { return node ? &node : nullptr; }

    /// "(name,id)", which opens most messages.
    std::wstring describe() const;

    /// The two passes that settle the attributes. False when one that is required can't be had or a
    /// text can't be expanded; `message` then tells why.
    bool readDeclaredAttributes(CContext& context, std::wstring& message);
    bool resolveDerivedAttributes(CContext& context, std::wstring& message);

    /// Fetches one text for each declaration; a text whose optional attribute is absent stays as it
    /// is. The outcome goes into the product's errorInfo, which a success empties but for its code.
    bool getAttributesText(std::initializer_list<std::wstring*> texts,
                           std::span<const AttributeDeclaration> declarations,
                           CContext& context) const;

    /// Asks the parent for an attribute. A parent that the walk hasn't set is made from the XML.
    /// False, with the reason in `message`, when there is no parent or it has no such attribute.
    bool getFromParent(AttributeRecord& record, const wchar_t* attributeName, CContext& context,
                       std::wstring& message);

    /// Overwrites the attribute of that name; false when there is none.
    bool updateAttribute(const AttributeRecord& record);

    /// The parent isn't owned, but for one that was made from the XML.
    CElement* getParent() const { return parent; }
    void setParent(CElement* element) { parent = element; }

protected:
    wchar_t name[256] = {};
    wchar_t id[256] = {};
    std::vector<AttributeRecord> attributes;
    CElement* parent = nullptr;
    XmlHandle node;
    const ElementKind* kind;  // what the class stands for

private:
    /// Why there is no answer: what is said before and behind the attribute's name.
    struct Refusal {
        const wchar_t* before;
        const wchar_t* behind;
    };

    /// The element's description and, between two pieces of text, the name of an attribute.
    std::wstring messageOn(const Refusal& refusal, const wchar_t* attributeName) const;

    AttributeRecord& addAttribute(const wchar_t* attributeName);

    /// getFromParent, but for the text where it stands, and without a word made of the reason.
    const std::wstring* findInParent(const wchar_t* attributeName, CContext& context,
                                     Refusal& refusal);

    ElementPtr parentOnDemand;  // keeps a parent that was made from the XML
};
