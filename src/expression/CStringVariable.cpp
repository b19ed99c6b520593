#include "expression/CStringVariable.h"

#include "expression/CVariableElement.h"

CStringVariable::CStringVariable(CVariableElement* element, bool isConst)
    : CVariable(VARIABLE_STRING, element, isConst) {}

const wchar_t* CStringVariable::getName() const {
    return element->getId();
}

std::wstring CStringVariable::getString() const {
    return element->getValueText();
}

void CStringVariable::setString(const std::wstring& text) {
    requireWritable();
    element->setValueText(text);
}
