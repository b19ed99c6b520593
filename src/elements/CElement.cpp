#include "elements/CElement.h"

#include <algorithm>
#include <cwchar>
#include <memory>
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

CElement::CElement(const XmlHandle& source, CContext&) {
    const WideText elementName = getElementNameOrThrow(source);
    if (!elementName)
        throw std::wstring(L"Can't obtain the name of the element");
    copyBounded(name, elementName.get());
    if (const WideText elementId = getAttributeCopyOrThrow(idAttribute, source))
        copyBounded(id, elementId.get());
    node = std::make_unique<XmlHandle>(source);
}

CElement::CElement(const wchar_t* elementName, const wchar_t* elementId, CContext& context) {
    node = context.findElementById(elementName, elementId);
    if (!node)
        throw L"(" + std::wstring(elementName) + L"," + elementId + L")" +
            L" element can't create(get the node is null).";
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
    list.clear();
}

void CElement::getDerivedAttributes(std::vector<AttributeDeclaration>& list) const {
    list.clear();
}

bool CElement::getDefaultAttribute(AttributeRecord&, const wchar_t*) const {
    return false;
}

bool CElement::getAttribute(const wchar_t* attributeName, AttributeRecord& record) const {
    const auto found = findRecord(attributes, attributeName);
    if (found == attributes.end())
        return false;
    record = *found;
    return true;
}

std::wstring CElement::describe() const {
    return std::wstring(L"(") + name + L"," + id + L")";
}

std::wstring CElement::messageOn(const wchar_t* before, const wchar_t* attributeName,
                                 const wchar_t* behind) const {
    return describe() + before + attributeName + behind;
}

bool CElement::readDeclaredAttributes(CContext& context, std::wstring& message) {
    std::vector<AttributeDeclaration> declarations;
    getAttributes(declarations);
    for (const AttributeDeclaration& declaration : declarations) {
        const WideText own = getAttributeCopyOrThrow(declaration.name, handle());
        if (!own) {
            if (!declaration.required)
                continue;
            message =
                messageOn(L" cant get the require explicit ", declaration.name, L"attribute.");
            return false;
        }
        std::wstring text = own.get();
        MakingScope::countOwn(text.size());
        if (isExpandable() && !expandText(text, context, message))
            return false;
        if (isCumulativeAttribute(declaration.name)) {
            const auto above = std::make_unique<AttributeRecord>();
            std::wstring ignored;
            if (getFromParent(*above, declaration.name, context, ignored)) {
                MakingScope::countTaken(above->value.size());
                combineWithParent(above->value, text);
            }
        }
        fillAttributeRecord(attributes.emplace_back(), declaration.name, text.c_str());
    }
    return true;
}

bool CElement::resolveDerivedAttributes(CContext& context, std::wstring& message) {
    std::vector<AttributeDeclaration> declarations;
    getDerivedAttributes(declarations);
    for (const AttributeDeclaration& declaration : declarations) {
        const auto record = std::make_unique<AttributeRecord>();
        if (getAttribute(declaration.name, *record))
            continue;
        if (getDefaultAttribute(*record, declaration.name) ||
            getFromParent(*record, declaration.name, context, message)) {
            MakingScope::countTaken(record->value.size());
            attributes.push_back(std::move(*record));
        } else if (declaration.required) {
            return false;
        }
    }
    return true;
}

bool CElement::getAttributesText(const std::vector<std::wstring*>& texts,
                                 std::span<const AttributeDeclaration> declarations,
                                 CContext& context) const {
    std::wstring message;
    if (texts.size() != declarations.size())
        message = describe() + L" getAttributesText params error.";
    for (size_t i = 0; message.empty() && i < declarations.size(); ++i) {
        AttributeRecord record;
        if (getAttribute(declarations[i].name, record))
            *texts[i] = record.value;
        else if (declarations[i].required)
            message = messageOn(L" can't get ", declarations[i].name, L" attribute.");
    }
    context.subject().setErrorText(message);
    return message.empty();
}

bool CElement::getFromParent(AttributeRecord& record, const wchar_t* attributeName,
                             CContext& context, std::wstring& message) {
    if (parent == nullptr) {
        const XmlHandle parentNode = parentOf(handle());
        if (!parentNode) {
            message =
                messageOn(L" can't get parent node when get the ", attributeName, L" attribute.");
            return false;
        }
        parentOnDemand = CreateElement(&parentNode, context);
        if (!parentOnDemand) {
            // To do without the parent's value is for what has none.
            if (lastCreateRanShort())
                throw std::bad_alloc();
            message = messageOn(L" can't create parent element when get the ", attributeName,
                                L" attribute.");
            return false;
        }
        parent = parentOnDemand.get();
    }
    if (parent->getAttribute(attributeName, record))
        return true;
    message = messageOn(L" can't get ", attributeName, L" attribute from  parent element.");
    return false;
}

bool CElement::updateAttribute(const AttributeRecord& record) {
    const auto found = findRecord(attributes, record.name);
    if (found == attributes.end())
        return false;
    *found = record;
    return true;
}
