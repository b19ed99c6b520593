#include "expression/CVariableElement.h"

#include <cwchar>

namespace {

constexpr wchar_t valueAttribute[] = L"Value";

}  // namespace

CVariableElement::CVariableElement(const XmlHandle& node, CContext& context)
    : CElement(node, context, variableKind) {}

VariableType CVariableElement::getVariableType() const {
    const std::wstring* type = find(L"Type");
    const VariableTypeKeyword* keyword =
        type ? findKeyword(variableTypeKeywords(), *type) : nullptr;
    return keyword ? keyword->type : VARIABLE_UNKNOWN;
}

std::wstring CVariableElement::getValueText() const {
    const std::wstring* value = find(valueAttribute);
    if (value == nullptr)
        throw describe() + L" can't get value attribute.";
    return *value;
}

void CVariableElement::setValueText(const std::wstring& text) {
    AttributeRecord record;
    if (!getAttribute(valueAttribute, record))
        return;
    record.value = text;
    if (!updateAttribute(record))  // can't be, as the attribute has just been found
        throw std::wstring(L"failed to update attribute when assignment.");
}

void CVariableElement::exchangeValueText(std::wstring& text) noexcept {
    for (AttributeRecord& record : attributes)
        if (wcscmp(record.name, valueAttribute) == 0)
            record.value.swap(text);
}
