#include "elements/CElement.h"

#include <algorithm>
#include <cwchar>
#include <new>
#include <utility>

#include "elements/ElementFactory.h"
#include "elements/MakingScope.h"
#include "elements/TextExpansion.h"
#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "logging/Log.h"
#include "system/TextFields.h"

namespace {

/// What a path that is joined with the parent's is expected to come to, in characters.
constexpr size_t usualPathLength = 260;

void checkNotNull(const wchar_t* pointer, int line, const char* expression) {
    if (pointer == nullptr)
        writeLog(ERROR, ".\\raw_installerXML ", line, " ", expression, " Must be non NULL!");
}

template <class Records>
auto findRecord(Records& records, const wchar_t* name) {
    return std::find_if(records.begin(), records.end(), [name](const AttributeRecord& record) {
        return wcscmp(record.name, name) == 0;
    });
}

}  // namespace

void fillAttributeRecord(AttributeRecord& record, const wchar_t* name, const wchar_t* valueText) {
    checkNotNull(name, 366, "'name' Must be non NULL");
    checkNotNull(valueText, 367, "'valueText' Must be non NULL");
    copyBounded(record.name, name);
    if (valueText == nullptr)
        failInvalidParameter();
    record.value = valueText;
}

CElement::CElement(const XmlHandle& source, CContext&, const ElementKind& kind)
    : node(source), kind(&kind) {
    const PassingText elementName(elementNameOf(source));
    if (!elementName)
        throw std::wstring(L"Can't obtain the name of the element");
    copyBounded(name, elementName.get());
    const PassingText elementId(attributeOf(source, idAttribute));
    if (elementId)
        copyBounded(id, elementId.get());
}

CElement::CElement(const wchar_t* elementName, const wchar_t* elementId, CContext& context,
                   const ElementKind& kind)
    : kind(&kind) {
    const XmlHandlePtr found = context.findElementById(elementName, elementId);
    if (!found)
        throw L"(" + std::wstring(elementName) + L"," + elementId + L")" +
            L" element can't create(get the node is null).";
    node = *found;
    copyCut(name, elementName);
    copyCut(id, elementId);
}

CElement::~CElement() = default;

bool CElement::isCumulativeAttribute(const wchar_t*) const {
    return false;
}

bool CElement::combineWithParent(const std::wstring&, std::wstring&) const {
    return false;
}

void CElement::getAttributes(std::vector<AttributeDeclaration>& list) const {
    list.assign(kind->declared.begin(), kind->declared.end());
}

void CElement::getDerivedAttributes(std::vector<AttributeDeclaration>& list) const {
    list.assign(kind->derived.begin(), kind->derived.end());
}

bool CElement::getDefaultAttribute(AttributeRecord&, const wchar_t*) const {
    return false;
}

bool CElement::getAttribute(const wchar_t* attributeName, AttributeRecord& record) const {
    const std::wstring* found = find(attributeName);
    if (found)
        fillAttributeRecord(record, attributeName, found->c_str());
    return found != nullptr;
}

const std::wstring* CElement::find(const wchar_t* attributeName) const {
    const auto found = findRecord(attributes, attributeName);
    if (found != attributes.end())
        return &found->value;
    if (!kind->isTransparent || kind->declares(attributeName))
        return nullptr;
    if (parent)
        return parent->find(attributeName);
    writeLog(ERROR, describe(), " don't know its parent element object.");
    return nullptr;
}

std::wstring CElement::describe() const {
    return std::wstring(L"(") + name + L"," + id + L")";
}

std::wstring CElement::messageOn(const Refusal& refusal, const wchar_t* attributeName) const {
    return describe() + refusal.before + attributeName + refusal.behind;
}

AttributeRecord& CElement::addAttribute(const wchar_t* attributeName) {
    AttributeRecord& record = attributes.emplace_back();
    fillAttributeRecord(record, attributeName, L"");
    return record;
}

bool CElement::readDeclaredAttributes(CContext& context, std::wstring& message) {
    attributes.reserve(kind->declared.size() + kind->derived.size());
    for (const AttributeDeclaration& declaration : kind->declared) {
        const bool isCumulative = isCumulativeAttribute(declaration.name);
        const char* const own = attributeOf(node, declaration.name);
        std::wstring text;
        if (own && isCumulative)
            text.reserve(usualPathLength);
        if (!convertOrThrow(own, text)) {
            if (!declaration.required)
                continue;
            message =
                messageOn({L" cant get the require explicit ", L"attribute."}, declaration.name);
            return false;
        }
        MakingScope::countOwn(text.size());
        if (isExpandable() && !expandText(text, context, message))
            return false;
        if (isCumulative) {
            Refusal ignored;
            if (const auto* above = findInParent(declaration.name, context, ignored)) {
                MakingScope::countTaken(above->size());
                combineWithParent(*above, text);
            }
        }
        addAttribute(declaration.name).value = std::move(text);
    }
    return true;
}

bool CElement::resolveDerivedAttributes(CContext& context, std::wstring& message) {
    for (const AttributeDeclaration& declaration : kind->derived) {
        if (find(declaration.name))
            continue;
        // In its place at once: a record of its own would be one more allocation.
        AttributeRecord& record = addAttribute(declaration.name);
        if (!getDefaultAttribute(record, declaration.name)) {
            Refusal refusal;
            const std::wstring* above = findInParent(declaration.name, context, refusal);
            if (above == nullptr) {
                attributes.pop_back();
                if (!declaration.required)
                    continue;
                message = messageOn(refusal, declaration.name);
                return false;
            }
            record.value = *above;
        }
        MakingScope::countTaken(record.value.size());
    }
    return true;
}

bool CElement::getAttributesText(std::initializer_list<std::wstring*> texts,
                                 std::span<const AttributeDeclaration> declarations,
                                 CContext& context) const {
    std::wstring message;
    if (texts.size() != declarations.size())
        message = describe() + L" getAttributesText params error.";
    for (size_t i = 0; message.empty() && i < declarations.size(); ++i) {
        if (const std::wstring* found = find(declarations[i].name))
            *texts.begin()[i] = *found;
        else if (declarations[i].required)
            message = messageOn({L" can't get ", L" attribute."}, declarations[i].name);
    }
    context.subject().setErrorText(message);
    return message.empty();
}

bool CElement::getFromParent(AttributeRecord& record, const wchar_t* attributeName,
                             CContext& context, std::wstring& message) {
    Refusal refusal;
    const std::wstring* found = findInParent(attributeName, context, refusal);
    if (found)
        fillAttributeRecord(record, attributeName, found->c_str());
    else
        message = messageOn(refusal, attributeName);
    return found != nullptr;
}

const std::wstring* CElement::findInParent(const wchar_t* attributeName, CContext& context,
                                           Refusal& refusal) {
    if (parent == nullptr) {
        const XmlHandle parentNode = parentOf(node);
        if (!parentNode) {
            refusal = {L" can't get parent node when get the ", L" attribute."};
            return nullptr;
        }
        parentOnDemand = CreateElement(&parentNode, context);
        if (!parentOnDemand) {
            // To do without the parent's value is for what has none.
            if (lastCreateRanShort())
                throw std::bad_alloc();
            refusal = {L" can't create parent element when get the ", L" attribute."};
            return nullptr;
        }
        parent = parentOnDemand.get();
    }
    refusal = {L" can't get ", L" attribute from  parent element."};
    return parent->find(attributeName);
}

bool CElement::updateAttribute(const AttributeRecord& record) {
    const auto found = findRecord(attributes, record.name);
    if (found == attributes.end())
        return false;
    *found = record;
    return true;
}
