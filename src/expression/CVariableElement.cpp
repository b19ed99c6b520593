#include "expression/CVariableElement.h"

#include <cwchar>

namespace {

constexpr wchar_t valueAttribute[] = L"Value";

}  // namespace

void CVariableElement::getAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, variableKind.declared);
}

VariableType CVariableElement::getVariableType() const {
    AttributeRecord record;
    if (!getAttribute(L"Type", record))
        return VARIABLE_UNKNOWN;
    const VariableTypeKeyword* keyword = findKeyword(variableTypeKeywords(), record.value);
    return keyword ? keyword->type : VARIABLE_UNKNOWN;
}

std::wstring CVariableElement::getValueText() const {
    AttributeRecord record;
    if (!getAttribute(valueAttribute, record))
        throw describe() + L" can't get value attribute.";
    return record.value;
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
